#include "MenuBarFormat.h"
#include "SettingsPreferencesStore.h"
#include "ZoneListCodec.h"
#include "ZoneStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace {

struct Result
{
    int exitCode = -1;
    QString out;
    QString err;
};

} // namespace

class TestCommandLine final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void lineInEveryFormat_data();
    void lineInEveryFormat();
    void lineUsesStoredFormat();
    void lineForGenmon_data();
    void lineForGenmon();
    void lineFollowsLocalZone_data();
    void lineFollowsLocalZone();
    void nothingPinnedPrintsEmptyLine();
    void commandsLoadOnlyWhatTheyNeed_data();
    void commandsLoadOnlyWhatTheyNeed();
    void readingWritesNothing();
    void failingEditsWriteNothing_data();
    void failingEditsWriteNothing();
    void errors_data();
    void errors();
    void addAndList();
    void addRefusesDuplicatesAndUnknownZones_data();
    void addRefusesDuplicatesAndUnknownZones();
    void zoneReferences_data();
    void zoneReferences();
    void editsByReference();
    void move_data();
    void move();
    void search();
    void at_data();
    void at();
    void atJson();
    void searchJson();
    void format();
    void watchPrintsOnEveryTick();
    void watchEndsWithItsReader();
    void unsavedEditsFail_data();
    void unsavedEditsFail();
    void deepNestingLoadsEmpty();

private:
    void saveZones(const QList<SavedZone> &zones, const QString &format = QString());
    // As another user when the tests run as root, whom permissions do not stop.
    Result run(const QStringList &arguments, const QString &tz = QStringLiteral("America/New_York"),
               bool asOtherUser = false, const QString &loaderDebug = QString());
    QJsonArray listJson();
    QStringList names();
    QString configFile() const { return m_home->filePath(QStringLiteral("zonara/zonara.conf")); }

    std::unique_ptr<QTemporaryDir> m_home;
    QString m_busAddress; // the session bus the command is given, if set
};

void TestCommandLine::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
}

void TestCommandLine::saveZones(const QList<SavedZone> &zones, const QString &format)
{
    SettingsPreferencesStore preferences(configFile());
    preferences.writeBytes(ZoneStore::zonesKey, *ZoneListCodec::encode(zones));
    preferences.writeBool(ZoneStore::seededKey, true);
    if (!format.isEmpty())
        preferences.writeText(ZoneStore::formatKey, format);
}

Result TestCommandLine::run(const QStringList &arguments, const QString &tz, bool asOtherUser,
                            const QString &loaderDebug)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home->path());
    environment.insert(QStringLiteral("TZ"), tz);
    // The user's locale must not change any text.
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    if (!m_busAddress.isEmpty())
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_busAddress);
    if (!loaderDebug.isEmpty())
        environment.insert(QStringLiteral("LD_DEBUG"), loaderDebug);
    process.setProcessEnvironment(environment);
    if (asOtherUser && ::geteuid() == 0)
        process.start(QStringLiteral("setpriv"),
                      QStringList{"--reuid=65534", "--regid=65534", "--clear-groups",
                                  QStringLiteral(ZONARA_BINARY)} +
                          arguments);
    else
        process.start(QStringLiteral(ZONARA_BINARY), arguments);
    if (!process.waitForFinished(30000))
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

namespace {

QList<SavedZone> workedExampleZones()
{
    return {
        {QUuid::createUuid(), QStringLiteral("America/New_York"), std::nullopt, true},
        {QUuid::createUuid(), QStringLiteral("Europe/Paris"), std::nullopt, false},
        {QUuid::createUuid(), QStringLiteral("Europe/London"), std::nullopt, true},
        {QUuid::createUuid(), QStringLiteral("Asia/Tokyo"), QStringLiteral("Tokyo office"), true},
    };
}

// Monday 5 January 2026, 20:00:07 in New York.
const QString mondayEvening = QStringLiteral("2026-01-05T20:00:07-05:00");

} // namespace

void TestCommandLine::lineInEveryFormat_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("at");
    QTest::addColumn<QString>("expected");
    QTest::newRow("labelTime24") << "labelTime24" << mondayEvening
                                 << "NYC 20:00  LON 01:00  Tokyo office 10:00";
    QTest::newRow("labelTime12") << "labelTime12" << mondayEvening
                                 << "NYC 8:00p  LON 1:00a  Tokyo office 10:00a";
    QTest::newRow("timeOnly24") << "timeOnly24" << mondayEvening << "20:00  01:00  10:00";
    QTest::newRow("labelDayTime24")
        << "labelDayTime24" << mondayEvening << "NYC 20:00  LON Tue 01:00  Tokyo office Tue 10:00";
    QTest::newRow("labelTime24Seconds") << "labelTime24Seconds" << mondayEvening
                                        << "NYC 20:00:07  LON 01:00:07  Tokyo office 10:00:07";
    QTest::newRow("same instant in UTC") << "labelTime24"
                                         << "2026-01-06T01:00:07Z"
                                         << "NYC 20:00  LON 01:00  Tokyo office 10:00";
    QTest::newRow("compact offset") << "labelTime24"
                                    << "2026-01-06T06:30:07+0530"
                                    << "NYC 20:00  LON 01:00  Tokyo office 10:00";
    QTest::newRow("summer") << "labelTime24"
                            << "2026-07-01T12:00:00Z"
                            << "NYC 08:00  LON 13:00  Tokyo office 21:00";
}

void TestCommandLine::lineInEveryFormat()
{
    QFETCH(QString, format);
    QFETCH(QString, at);
    QFETCH(QString, expected);
    saveZones(workedExampleZones());
    const Result result = run(
        {QStringLiteral("line"), QStringLiteral("--format"), format, QStringLiteral("--at"), at});
    QCOMPARE(result.err, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out, expected + u'\n');
}

void TestCommandLine::lineUsesStoredFormat()
{
    saveZones(workedExampleZones(), QStringLiteral("labelTime12"));
    const Result result = run({QStringLiteral("line"), QStringLiteral("--at"), mondayEvening});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out, QStringLiteral("NYC 8:00p  LON 1:00a  Tokyo office 10:00a\n"));
}

void TestCommandLine::lineForGenmon_data()
{
    QTest::addColumn<bool>("pinned");
    QTest::addColumn<QString>("shown"); // the tags before the tooltip
    const QString click = QStringLiteral("'" ZONARA_BINARY "' --panel");
    QTest::newRow("the line, as markup")
        << true
        << "<txt>NYC 20:00  LON 01:00  R&amp;D &lt;Ops&gt; 10:00</txt><txtclick>" + click +
               "</txtclick>";
    QTest::newRow("nothing pinned: the globe")
        << false
        << "<icon>io.github.zonara.Zonara-symbolic</icon><iconclick>" + click + "</iconclick>";
}

void TestCommandLine::lineForGenmon()
{
    QFETCH(bool, pinned);
    QFETCH(QString, shown);
    QList<SavedZone> zones = workedExampleZones();
    zones[3].customLabel = QStringLiteral("R&D <Ops>");
    for (SavedZone &zone : zones)
        zone.isPinned = zone.isPinned && pinned;
    saveZones(zones);
    const Result result = run({QStringLiteral("line"), QStringLiteral("--at"), mondayEvening,
                               QStringLiteral("--genmon")});
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.out.startsWith(shown + QStringLiteral("<tool>")), qPrintable(result.out));
    QVERIFY(result.out.endsWith(QStringLiteral("</tool>\n")));
    // Every city in the tooltip, pinned ones first.
    const QString tooltip = result.out.sliced(shown.size() + 6).chopped(8);
    // "London 01:00 · GMT · +6h, tomorrow": the name before the time.
    const QRegularExpression time(QStringLiteral(" \\d\\d:\\d\\d$"));
    QStringList names;
    for (const QString &line : tooltip.split(u'\n'))
        names.append(line.section(QStringLiteral(" · "), 0, 0).remove(time));
    QCOMPARE(names, pinned ? QStringList({"New York", "London", "R&amp;D &lt;Ops&gt;", "Paris"})
                           : QStringList({"New York", "Paris", "London", "R&amp;D &lt;Ops&gt;"}));
}

void TestCommandLine::lineFollowsLocalZone_data()
{
    QTest::addColumn<QString>("tz");
    QTest::addColumn<QString>("expected");
    // The weekday appears where the zone's date differs from the local one.
    QTest::newRow("New York") << "America/New_York"
                              << "NYC 20:00  LON Tue 01:00  Tokyo office Tue 10:00";
    QTest::newRow("London") << "Europe/London"
                            << "NYC Mon 20:00  LON 01:00  Tokyo office 10:00";
    QTest::newRow("Tokyo, leading colon") << ":Asia/Tokyo"
                                          << "NYC Mon 20:00  LON 01:00  Tokyo office 10:00";
}

void TestCommandLine::lineFollowsLocalZone()
{
    QFETCH(QString, tz);
    QFETCH(QString, expected);
    saveZones(workedExampleZones(), QStringLiteral("labelDayTime24"));
    const Result result = run({QStringLiteral("line"), QStringLiteral("--at"), mondayEvening}, tz);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out, expected + u'\n');
}

void TestCommandLine::nothingPinnedPrintsEmptyLine()
{
    QList<SavedZone> zones = workedExampleZones();
    for (SavedZone &zone : zones)
        zone.isPinned = false;
    saveZones(zones);
    const Result result = run({QStringLiteral("line")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out, QStringLiteral("\n"));
    QCOMPARE(result.err, QString());
}

void TestCommandLine::commandsLoadOnlyWhatTheyNeed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("unloaded");
    const QStringList gui{"libQt6Gui", "libQt6Widgets", "libQt6Network", "libQt6Svg"};
    // A status bar may ask for the line every few seconds: not even the bus.
    QTest::newRow("line") << QStringList{"line"} << QStringList{"libQt6DBus"} + gui;
    QTest::newRow("list") << QStringList{"list"} << gui;
    QTest::newRow("search") << QStringList{"search", "stockholm"} << gui;
}

void TestCommandLine::commandsLoadOnlyWhatTheyNeed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, unloaded);

    saveZones(workedExampleZones());
    // The dynamic loader names every library it loads, across exec too.
    const Result result = run(arguments, QStringLiteral("UTC"), false, QStringLiteral("files"));
    QCOMPARE(result.exitCode, 0);
    const QString &loads = result.err;
    QVERIFY2(loads.contains(u"file=libQt6Core"), "the loader did not say what it loaded");
    for (const QString &library : unloaded)
        QVERIFY2(!loads.contains(u"file=" + library), qPrintable(library));
}

void TestCommandLine::readingWritesNothing()
{
    // A first run: the seed stays in memory, the user's file is not created.
    const Result result = run({QStringLiteral("line")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out, QStringLiteral("\n"));
    QVERIFY(!QFile::exists(configFile()));

    saveZones(workedExampleZones());
    QFile file(configFile());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();
    // Nor does it ask the bus: a status bar runs it every few seconds.
    const QByteArray socketPath = QFile::encodeName(m_home->filePath(QStringLiteral("bus")));
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath.constData(), sizeof address.sun_path - 1);
    QVERIFY(::bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0);
    QVERIFY(::listen(listener, 4) == 0);
    m_busAddress = QStringLiteral("unix:path=") + QFile::decodeName(socketPath);
    QCOMPARE(run({QStringLiteral("line")}).exitCode, 0);
    m_busAddress.clear();
    const int connection = ::accept(listener, nullptr, nullptr);
    if (connection >= 0)
        ::close(connection);
    ::close(listener);
    QCOMPARE(connection, -1);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
}

void TestCommandLine::failingEditsWriteNothing_data()
{
    QTest::addColumn<int>("saved"); // cities saved before; none: a first run
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("mentions");
    QTest::newRow("unknown city, first run") << 0 << QStringList{"pin", "Atlantis"} << "Atlantis";
    QTest::newRow("unknown city") << 4 << QStringList{"rename", "Atlantis", "A"} << "Atlantis";
    QTest::newRow("nickname too long")
        << 4 << QStringList{"rename", "Paris", QString(101, u'n')} << "at most 100 characters";
    QTest::newRow("list full") << 500 << QStringList{"add", "Europe/Paris"} << "at most 500";
}

void TestCommandLine::failingEditsWriteNothing()
{
    QFETCH(int, saved);
    QFETCH(QStringList, arguments);
    QFETCH(QString, mentions);
    QList<SavedZone> zones = workedExampleZones();
    for (int i = zones.size(); i < saved; ++i)
        zones.append(
            {QUuid::createUuid(), QStringLiteral("Asia/Tokyo"), QString::number(i), false});
    if (saved > 0)
        saveZones(zones.first(saved));
    const QFileInfo before(configFile());

    const Result result = run(arguments);
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.err.contains(mentions), qPrintable(result.err));
    const QFileInfo after(configFile());
    QCOMPARE(after.exists(), saved > 0);
    // Not even rewritten with the same content.
    if (saved > 0)
        QCOMPARE(after.lastModified(), before.lastModified());
}

void TestCommandLine::errors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("mentions");
    QTest::newRow("unknown format")
        << QStringList{"line", "--format", "LabelTime24"} << "LabelTime24";
    QTest::newRow("format title") << QStringList{"line", "--format", "Label + 24h"}
                                  << "Label + 24h";
    QTest::newRow("words") << QStringList{"line", "--at", "yesterday"} << "yesterday";
    QTest::newRow("no offset") << QStringList{"line", "--at", "2026-01-05T20:00:07"} << "offset";
    QTest::newRow("no time") << QStringList{"line", "--at", "2026-01-05"} << "2026-01-05";
    QTest::newRow("month 13") << QStringList{"line", "--at", "2026-13-05T20:00Z"} << "2026-13-05";
    QTest::newRow("space separator")
        << QStringList{"line", "--at", "2026-01-05 20:00Z"} << "20:00Z";
    QTest::newRow("missing value") << QStringList{"line", "--at"} << "at";
    QTest::newRow("stray argument") << QStringList{"line", "now"} << "now";
    QTest::newRow("unknown command") << QStringList{"frobnicate"} << "frobnicate";
    QTest::newRow("at: unknown city")
        << QStringList{"at", "15:00 Qwertyville"} << "\"Qwertyville\"";
    QTest::newRow("at: no time") << QStringList{"at", "Tokyo"} << "no time of day";
    QTest::newRow("at: nothing") << QStringList{"at"} << "takes a time";
    QTest::newRow("at: no such date")
        << QStringList{"at", "15:00", "--date", "2026-02-30"} << "2026-02-30";
    QTest::newRow("hours: no range") << QStringList{"hours", "9-17"} << "\"9-17\"";
    QTest::newRow("list: a date alone") << QStringList{"list", "--date", "2026-03-10"} << "--at";
    // Not taken for the tray program: that would need a display.
    QTest::newRow("unknown option") << QStringList{"--jsn"} << "unknown option \"--jsn\"";
    QTest::newRow("Qt option, then unknown")
        << QStringList{"-platform", "offscreen", "--jsn"} << "--jsn";
}

void TestCommandLine::errors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, mentions);
    saveZones(workedExampleZones());
    const Result result = run(arguments);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.out, QString());
    QVERIFY2(result.err.contains(mentions), qPrintable(result.err));
}

QJsonArray TestCommandLine::listJson()
{
    const Result result = run({QStringLiteral("list"), QStringLiteral("--json")});
    if (result.exitCode != 0)
        return {};
    return QJsonDocument::fromJson(result.out.toUtf8()).array();
}

QStringList TestCommandLine::names()
{
    QStringList names;
    for (const QJsonValue &zone : listJson())
        names.append(zone[QStringLiteral("displayName")].toString());
    return names;
}

void TestCommandLine::addAndList()
{
    QCOMPARE(run({"add", "Asia/Tokyo", "--pin"}).exitCode, 0);
    const Result added = run({"add", "America/New_York", "--nickname", " NY office "});
    QCOMPARE(added.exitCode, 0);
    QCOMPARE(added.out, QString());

    // The first edit seeds the list with the local zone, as the tray program would.
    const QJsonArray zones = listJson();
    QCOMPARE(zones.size(), 3);
    const QJsonObject seed = zones[0].toObject();
    QCOMPARE(seed["identifier"].toString(), QStringLiteral("America/New_York"));
    QCOMPARE(seed["nickname"], QJsonValue());
    QCOMPARE(seed["pinned"].toBool(), false);
    const QJsonObject tokyo = zones[1].toObject();
    QCOMPARE(tokyo["position"].toInt(), 2);
    QCOMPARE(tokyo["displayName"].toString(), QStringLiteral("Tokyo"));
    QCOMPARE(tokyo["pinned"].toBool(), true);
    QVERIFY(QRegularExpression("^\\d\\d:\\d\\d$").match(tokyo["time"].toString()).hasMatch());
    // New York is 13 or 14 hours behind, with or without daylight saving.
    QVERIFY(QRegularExpression("^JST · \\+1[34]h(, tomorrow)?$")
                .match(tokyo["subtitle"].toString())
                .hasMatch());
    QVERIFY(QUuid::fromString(tokyo["id"].toString()).isNull() == false);
    const QJsonObject office = zones[2].toObject();
    QCOMPARE(office["nickname"].toString(), QStringLiteral(" NY office ")); // stored as given
    QCOMPARE(office["displayName"].toString(), QStringLiteral("NY office"));

    const Result text = run({"list"});
    QCOMPARE(text.exitCode, 0);
    const QStringList lines = text.out.split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines[0].startsWith(QStringLiteral("#  Name")));
    QVERIFY(lines[2].contains(QStringLiteral("Asia/Tokyo")));
    QVERIFY(lines[2].contains(QStringLiteral("yes")));
}

void TestCommandLine::addRefusesDuplicatesAndUnknownZones_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("mentions");
    QTest::newRow("duplicate") << QStringList{"add", "Asia/Tokyo"} << 1 << "already in your list";
    QTest::newRow("other nickname is fine")
        << QStringList{"add", "Asia/Tokyo", "--nickname", "HQ"} << 0 << "";
    QTest::newRow("unknown, with a suggestion")
        << QStringList{"add", "stockholm"} << 2 << "did you mean Europe/Stockholm";
    QTest::newRow("unknown, by its city part")
        << QStringList{"add", "Asia/Stockholm"} << 2 << "did you mean Europe/Stockholm";
    QTest::newRow("unknown, nothing like it")
        << QStringList{"add", "Mars/Olympus"} << 2 << "unknown time zone \"Mars/Olympus\"";
    QTest::newRow("pseudo zone") << QStringList{"add", "UTC+05:00"} << 2 << "UTC+05:00";
    QTest::newRow("no zone") << QStringList{"add"} << 2 << "takes one time zone";
    QTest::newRow("nickname too long")
        << QStringList{"add", "Asia/Tokyo", "--nickname", QString(101, u'n')} << 2
        << "at most 100 characters";
}

void TestCommandLine::addRefusesDuplicatesAndUnknownZones()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, mentions);
    saveZones({{QUuid::createUuid(), QStringLiteral("Asia/Tokyo"), std::nullopt, false}});
    const Result result = run(arguments);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.out, QString());
    QVERIFY2(result.err.contains(mentions), qPrintable(result.err));
    QCOMPARE(listJson().size(), exitCode == 0 ? 2 : 1);
}

void TestCommandLine::zoneReferences_data()
{
    QTest::addColumn<QString>("reference");
    QTest::addColumn<int>("position"); // 0: an error
    QTest::addColumn<QString>("mentions");
    QTest::newRow("position") << "2" << 2 << "";
    QTest::newRow("position 0") << "0" << 0 << "no city at position 0";
    QTest::newRow("past the end") << "5" << 0 << "your list has 4";
    QTest::newRow("name") << "Tokyo office" << 3 << "";
    QTest::newRow("name, other case") << "tokyo OFFICE" << 3 << "";
    QTest::newRow("city part") << "London" << 4 << "";
    QTest::newRow("two cities") << "New York" << 0 << "positions 1, 2";
    QTest::newRow("nobody") << "Paris" << 0 << "no city in your list is called \"Paris\"";
    QTest::newRow("id") << "00000000-0000-4000-8000-000000000003" << 3 << "";
    QTest::newRow("id in braces") << "{00000000-0000-4000-8000-000000000004}" << 4 << "";
    QTest::newRow("unknown id") << "00000000-0000-4000-8000-000000000009" << 0
                                << "no city has the id";
}

void TestCommandLine::zoneReferences()
{
    QFETCH(QString, reference);
    QFETCH(int, position);
    QFETCH(QString, mentions);
    const auto id = [](int n) {
        return QUuid::fromString(QStringLiteral("00000000-0000-4000-8000-00000000000%1").arg(n));
    };
    saveZones({
        {id(1), QStringLiteral("America/New_York"), std::nullopt, false},
        {id(2), QStringLiteral("America/New_York"), QStringLiteral("New York"), false},
        {id(3), QStringLiteral("Asia/Tokyo"), QStringLiteral("Tokyo office"), false},
        {id(4), QStringLiteral("Europe/London"), std::nullopt, false},
    });
    const Result result = run({"pin", reference});
    const QJsonArray zones = listJson();
    if (position == 0) {
        QCOMPARE(result.exitCode, 2);
        QVERIFY2(result.err.contains(mentions), qPrintable(result.err));
        for (const QJsonValue &zone : zones)
            QVERIFY(!zone["pinned"].toBool());
        return;
    }
    QCOMPARE(result.err, QString());
    QCOMPARE(result.exitCode, 0);
    for (const QJsonValue &zone : zones)
        QCOMPARE(zone["pinned"].toBool(), zone["position"].toInt() == position);
}

void TestCommandLine::editsByReference()
{
    saveZones(workedExampleZones());
    // pin and unpin set the flag; they do not toggle it.
    QCOMPARE(run({"pin", "1"}).exitCode, 0);
    QCOMPARE(run({"pin", "1"}).exitCode, 0);
    QCOMPARE(listJson().at(0).toObject().value("pinned").toBool(), true);
    QCOMPARE(run({"unpin", "Tokyo office"}).exitCode, 0);
    QCOMPARE(run({"unpin", "Tokyo office"}).exitCode, 0);
    QCOMPARE(listJson().at(3).toObject().value("pinned").toBool(), false);

    QCOMPARE(run({"rename", "Paris", "  Bureau  "}).exitCode, 0);
    QCOMPARE(listJson().at(1).toObject().value("nickname").toString(), QStringLiteral("Bureau"));
    QCOMPARE(run({"rename", "Bureau"}).exitCode, 0);
    QCOMPARE(listJson().at(1).toObject().value("nickname"), QJsonValue());
    QCOMPARE(listJson().at(1).toObject().value("displayName").toString(), QStringLiteral("Paris"));

    QCOMPARE(run({"remove", "London"}).exitCode, 0);
    QCOMPARE(names(), (QStringList{"New York", "Paris", "Tokyo office"}));
    QCOMPARE(run({"remove", "London"}).exitCode, 2);
    QCOMPARE(run({"remove"}).exitCode, 2);
    QCOMPARE(run({"line", "--at", mondayEvening}).out, QStringLiteral("NYC 20:00\n"));
}

void TestCommandLine::move_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("exitCode");
    const QStringList unchanged{"New York", "Paris", "London", "Tokyo office"};
    QTest::newRow("third to the top")
        << QStringList{"move", "3", "--before", "1"}
        << QStringList{"London", "New York", "Paris", "Tokyo office"} << 0;
    QTest::newRow("first to the end")
        << QStringList{"move", "New York", "--to-end"}
        << QStringList{"Paris", "London", "Tokyo office", "New York"} << 0;
    QTest::newRow("before itself")
        << QStringList{"move", "2", "--before", "Paris"} << unchanged << 2;
    QTest::newRow("both ways") << QStringList{"move", "2", "--before", "1", "--to-end"} << unchanged
                               << 2;
    QTest::newRow("no way") << QStringList{"move", "2"} << unchanged << 2;
    QTest::newRow("unknown anchor")
        << QStringList{"move", "2", "--before", "Oslo"} << unchanged << 2;
}

void TestCommandLine::move()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, expected);
    QFETCH(int, exitCode);
    saveZones(workedExampleZones());
    const Result result = run(arguments);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.err.isEmpty(), exitCode == 0);
    QCOMPARE(names(), expected);
}

void TestCommandLine::search()
{
    saveZones(workedExampleZones());
    const Result result = run({"search", "stockholm"});
    QCOMPARE(result.exitCode, 0);
    const QStringList lines = result.out.split(u'\n', Qt::SkipEmptyParts);
    QVERIFY(!lines.isEmpty());
    QVERIFY2(lines[0].startsWith(QStringLiteral("Stockholm")), qPrintable(lines[0]));
    QVERIFY(lines[0].contains(QStringLiteral("Sweden · Europe/Stockholm")));

    // A blank query lists the suggestions, marking those already saved.
    const QStringList suggestions = run({"search", "  "}).out.split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(suggestions.size(), 6);
    QVERIFY(suggestions[0].startsWith(QStringLiteral("Tokyo")));
    QVERIFY(!suggestions[0].contains(QStringLiteral("(added)"))); // saved with a nickname
    QVERIFY(suggestions[2].startsWith(QStringLiteral("New York")));
    QVERIFY(suggestions[2].contains(QStringLiteral("(added)")));

    const Result nothing = run({"search", "zzzz"});
    QCOMPARE(nothing.exitCode, 1);
    QCOMPARE(nothing.out, QString());
    QVERIFY(nothing.err.contains(QStringLiteral("\"zzzz\"")));
}

void TestCommandLine::at_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("tz");
    QTest::addColumn<QString>("hours");        // the working hours; empty: off
    QTest::addColumn<QStringList>("expected"); // the first lines of the output
    // New York has moved its clocks, London and Paris not yet.
    QTest::newRow("between the US and EU changes")
        << QStringList{"at", "15:00 Tokyo", "--date", "2026-03-10"} << "America/New_York"
        << ""
        << QStringList{"15:00 Tue 2026-03-10 in Tokyo",
                       "#  Name          Time zone         Time   Offset",
                       "1  New York      America/New_York  02:00  EDT · local",
                       "2  Paris         Europe/Paris      07:00  CET · +5h",
                       "3  London        Europe/London     06:00  GMT · +4h",
                       "4  Tokyo office  Asia/Tokyo        15:00  JST · +13h",
                       ""};
    QTest::newRow("skipped: the next valid time")
        << QStringList{"at", "2:30 am New York", "--date", "2026-03-08"} << "America/New_York"
        << ""
        << QStringList{"03:00 Sun 2026-03-08 in New York",
                       "02:30 does not exist there that day (the clocks go forward); this is "
                       "the next valid time",
                       "#  Name          Time zone         Time   Offset",
                       "1  New York      America/New_York  03:00  EDT · local"};
    QTest::newRow("shown twice, on the own clock: the first")
        << QStringList{"at", "1:30", "--date", "2026-11-01"} << "America/New_York"
        << ""
        << QStringList{"01:30 Sun 2026-11-01 in your time zone (America/New_York)",
                       "01:30 comes twice there that day (the clocks go back); this is the "
                       "first, EDT",
                       "#  Name          Time zone         Time   Offset",
                       "1  New York      America/New_York  01:30  EDT · local"};
    QTest::newRow("city after the time, in words; working hours")
        << QStringList{"at", "20:00", "New", "York", "--date", "2026-01-05"} << "Asia/Tokyo"
        << "09:00-18:00"
        << QStringList{
               "20:00 Mon 2026-01-05 in New York",
               "#  Name          Time zone         Time   Offset                 Working hours",
               "1  New York      America/New_York  20:00  EST · -14h, yesterday  no",
               "2  Paris         Europe/Paris      02:00  CET · -8h              no",
               "3  London        Europe/London     01:00  GMT · -9h              no",
               "4  Tokyo office  Asia/Tokyo        10:00  JST · local            yes",
               ""};
    QTest::newRow("list --at, a nickname")
        << QStringList{"list", "--at", "Tokyo office 8am", "--date", "2026-01-06"}
        << "America/New_York"
        << ""
        << QStringList{"08:00 Tue 2026-01-06 in Tokyo office",
                       "#  Name          Time zone         Time   Offset",
                       "1  New York      America/New_York  18:00  EST · local",
                       "2  Paris         Europe/Paris      00:00  CET · +6h, tomorrow"};
}

void TestCommandLine::at()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, tz);
    QFETCH(QString, hours);
    QFETCH(QStringList, expected);
    saveZones(workedExampleZones());
    if (!hours.isEmpty())
        SettingsPreferencesStore(configFile()).writeText(ZoneStore::workingHoursKey, hours);
    const Result result = run(arguments, tz);
    QCOMPARE(result.err, QString());
    QCOMPARE(result.exitCode, 0);
    const QStringList lines = result.out.split(u'\n');
    QVERIFY2(lines.size() >= expected.size(), qPrintable(result.out));
    QCOMPARE(lines.first(expected.size()), expected);
}

void TestCommandLine::atJson()
{
    saveZones(workedExampleZones());
    // A night shift, across midnight.
    QCOMPARE(run({"hours"}).out, QStringLiteral("off\n"));
    QCOMPARE(run({"hours", "22:00-06:00"}).exitCode, 0);
    QCOMPARE(run({"hours"}).out, QStringLiteral("22:00-06:00\n"));
    const Result result = run({"at", "Tokyo 08:00", "--date", "2026-03-10", "--json"});
    QCOMPARE(result.exitCode, 0);
    const QJsonObject object = QJsonDocument::fromJson(result.out.toUtf8()).object();
    QCOMPARE(object["moment"].toString(), QStringLiteral("2026-03-09T23:00:00Z"));
    QCOMPARE(object["workingHours"].toString(), QStringLiteral("22:00-06:00"));
    const QJsonObject anchor = object["anchor"].toObject();
    QCOMPARE(anchor["name"].toString(), QStringLiteral("Tokyo"));
    QCOMPARE(anchor["identifier"].toString(), QStringLiteral("Asia/Tokyo"));
    QCOMPARE(anchor["localDateTime"].toString(), QStringLiteral("2026-03-10T08:00:00"));
    QCOMPARE(anchor["note"], QJsonValue());

    const QJsonArray cities = object["cities"].toArray();
    QStringList seen;
    for (const QJsonValue &city : cities) {
        seen.append(QStringList{city["displayName"].toString(), city["identifier"].toString(),
                                city["localDateTime"].toString(), city["time"].toString(),
                                QString::number(city["utcOffsetSeconds"].toInt()),
                                city["relativeDay"].toString(QStringLiteral("-")),
                                city["workingTime"].toBool() ? "in" : "out"}
                        .join(u' '));
    }
    QCOMPARE(seen, (QStringList{
                       "New York America/New_York 2026-03-09T19:00:00 19:00 -14400 - out",
                       "Paris Europe/Paris 2026-03-10T00:00:00 00:00 3600 tomorrow in",
                       "London Europe/London 2026-03-09T23:00:00 23:00 0 - in",
                       "Tokyo office Asia/Tokyo 2026-03-10T08:00:00 08:00 32400 tomorrow out",
                   }));

    QCOMPARE(run({"hours", "off"}).exitCode, 0);
    QCOMPARE(run({"hours"}).out, QStringLiteral("off\n"));
    const QJsonObject off =
        QJsonDocument::fromJson(
            run({"at", "Tokyo 08:00", "--date", "2026-03-10", "--json"}).out.toUtf8())
            .object();
    QCOMPARE(off["workingHours"], QJsonValue());
    QVERIFY(!off["cities"][0].toObject().contains(QStringLiteral("workingTime")));
}

void TestCommandLine::searchJson()
{
    saveZones(workedExampleZones());
    const Result result = run({"search", "São Paulo", "--json"});
    QCOMPARE(result.exitCode, 0);
    const QJsonArray results = QJsonDocument::fromJson(result.out.toUtf8()).array();
    QVERIFY(!results.isEmpty());
    const QJsonObject first = results[0].toObject();
    QCOMPARE(first["title"].toString(), QStringLiteral("São Paulo"));
    QCOMPARE(first["identifier"].toString(), QStringLiteral("America/Sao_Paulo"));
    QCOMPARE(first["nickname"].toString(), QStringLiteral("São Paulo")); // differs from "Sao Paulo"
    QCOMPARE(first["alreadyAdded"].toBool(), false);
    QVERIFY(QRegularExpression("^\\d\\d:\\d\\d$").match(first["time"].toString()).hasMatch());
    QCOMPARE(run({"search", "zzzz", "--json"}).out, QStringLiteral("[]\n"));
}

void TestCommandLine::format()
{
    saveZones(workedExampleZones());
    QCOMPARE(run({"format"}).out, QStringLiteral("labelTime24\n"));
    QCOMPARE(run({"format", "labelDayTime24"}).exitCode, 0);
    QCOMPARE(run({"format"}).out, QStringLiteral("labelDayTime24\n"));
    const Result wrong = run({"format", "Label + day + 24h"});
    QCOMPARE(wrong.exitCode, 2);
    QVERIFY(wrong.err.contains(QStringLiteral("labelTime24Seconds")));
    QCOMPARE(run({"format"}).out, QStringLiteral("labelDayTime24\n"));
}

void TestCommandLine::watchPrintsOnEveryTick()
{
    saveZones(workedExampleZones());
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home->path());
    environment.insert(QStringLiteral("TZ"), QStringLiteral("Asia/Tokyo"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ZONARA_BINARY),
                  {"watch", "--json", "--format", "labelTime24Seconds"});
    QList<QJsonObject> objects;
    QList<QDateTime> arrivals;
    while (objects.size() < 4 && process.waitForReadyRead(5000)) {
        while (process.canReadLine()) {
            arrivals.append(QDateTime::currentDateTimeUtc());
            objects.append(QJsonDocument::fromJson(process.readLine()).object());
        }
    }
    process.kill();
    process.waitForFinished(5000);
    QCOMPARE(objects.size(), 4);

    for (qsizetype i = 0; i < objects.size(); ++i) {
        const QJsonObject &object = objects[i];
        QCOMPARE(object["class"].toString(), QStringLiteral("pinned"));
        const QString text = object["text"].toString();
        const QRegularExpressionMatch match =
            QRegularExpression(
                "^NYC \\d\\d:\\d\\d:(\\d\\d)  LON \\d\\d:\\d\\d:\\d\\d  Tokyo office "
                "\\d\\d:\\d\\d:(\\d\\d)$")
                .match(text);
        QVERIFY2(match.hasMatch(), qPrintable(text));
        const QStringList tooltip = object["tooltip"].toString().split(u'\n');
        QCOMPARE(tooltip.size(), 4);
        // Pinned cities first: unpinned Paris comes last.
        QVERIFY2(tooltip[2].startsWith(QStringLiteral("Tokyo office ")), qPrintable(tooltip[2]));
        QVERIFY(tooltip[2].endsWith(QStringLiteral("JST · local")));
        QVERIFY2(tooltip[3].startsWith(QStringLiteral("Paris ")), qPrintable(tooltip[3]));
        if (i == 0)
            continue;
        // Each line shows the second it was printed in (read here at most a
        // second later), and a new second each time: a tick that came before
        // its boundary would print the old second twice.
        const int printed = match.captured(1).toInt();
        const int arrived = arrivals[i].time().second();
        QVERIFY2(printed == arrived || printed == (arrived + 59) % 60,
                 qPrintable(QStringLiteral("%1 printed, arrived in %2").arg(printed).arg(arrived)));
        QVERIFY(object["text"] != objects[i - 1]["text"]);
    }
}

void TestCommandLine::watchEndsWithItsReader()
{
    saveZones(workedExampleZones());
    // A reader that leaves after one line, under a shell that ignores SIGPIPE
    // as some bars do: only the failed write can end the watcher.
    QProcess shell;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home->path());
    shell.setProcessEnvironment(environment);
    shell.start(QStringLiteral("bash"),
                {"-c",
                 "trap '' PIPE; \"$0\" watch --format labelTime24Seconds | head -n 1 >/dev/null; "
                 "echo \"${PIPESTATUS[0]}\"",
                 ZONARA_BINARY});
    QVERIFY(shell.waitForFinished(10000));
    QCOMPARE(shell.readAllStandardOutput(), QByteArray("0\n"));
}

void TestCommandLine::unsavedEditsFail_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<QString>("message");
    QTest::newRow("a directory in place of the file") << "directory"
                                                      << "could not be saved";
    QTest::newRow("a read-only folder") << "read-only folder"
                                        << "could not be saved";
    QTest::newRow("an unreadable file") << "unreadable file"
                                        << "could not be";
}

void TestCommandLine::unsavedEditsFail()
{
    QFETCH(QString, damage);
    QFETCH(QString, message);
    QByteArray before;
    const QString folder = QFileInfo(configFile()).absolutePath();
    if (damage == u"directory") {
        QVERIFY(QDir().mkpath(configFile()));
    } else {
        saveZones({{QUuid::createUuid(), QStringLiteral("Europe/Paris"), std::nullopt, true}});
        QFile file(configFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        before = file.readAll();
        file.close();
        const auto everyone = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                              QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
        QVERIFY(QFile::setPermissions(m_home->path(), everyone));
        if (damage == u"read-only folder") {
            QVERIFY(QFile::setPermissions(folder, everyone));
        } else {
            QVERIFY(QFile::setPermissions(folder, everyone | QFile::WriteOwner | QFile::WriteGroup |
                                                      QFile::WriteOther));
            QVERIFY(file.setPermissions({}));
        }
    }
    const Result result = run({"add", "Asia/Tokyo"}, QStringLiteral("America/New_York"), true);
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.err.contains(message), qPrintable(result.err));
    if (!before.isEmpty()) {
        // Nothing that was saved is lost.
        QFile file(configFile());
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);
    }
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void TestCommandLine::deepNestingLoadsEmpty()
{
    // Arrays nested 100,000 deep as the stored list: a crash at every start
    // once, now an unreadable list (beyond the file's size limit too) kept
    // aside at the next edit.
    QByteArray deep("bplist00");
    QByteArray table;
    constexpr quint32 depth = 100000;
    for (quint32 i = 0; i < depth; ++i) {
        table += char(deep.size() >> 24) + QByteArray(1, char(deep.size() >> 16)) +
                 char(deep.size() >> 8) + char(deep.size());
        deep += i + 1 < depth ? QByteArray("\xA1") + char(0) + char((i + 1) >> 16) +
                                    char((i + 1) >> 8) + char(i + 1)
                              : QByteArray("\xA0");
    }
    const quint32 tableOffset = quint32(deep.size());
    deep += table + QByteArray(6, '\0') + char(4) + char(4);
    for (const quint64 value : {quint64(depth), quint64(0), quint64(tableOffset)})
        for (int shift = 56; shift >= 0; shift -= 8)
            deep += char(value >> shift);
    {
        // Written past our own writer, which keeps files under its size limit.
        QSettings settings(configFile(), QSettings::IniFormat);
        settings.setValue(ZoneStore::zonesKey, deep);
        settings.setValue(ZoneStore::seededKey, true);
    }
    // Read as no file at all: a first run's list.
    const Result list = run({"list", "--json"});
    QCOMPARE(list.exitCode, 0);
    QCOMPARE(QJsonDocument::fromJson(list.out.toUtf8()).array().size(), 1);
    const Result added = run({"add", "Asia/Tokyo"});
    QCOMPARE(added.exitCode, 0);
    QVERIFY2(added.err.contains(QStringLiteral("could not be read")), qPrintable(added.err));
    const QStringList copies = QDir(m_home->filePath(QStringLiteral("zonara")))
                                   .entryList({QStringLiteral("zonara.conf.unreadable-*")});
    QCOMPARE(copies.size(), 1);
    const QSettings copy(m_home->filePath(QStringLiteral("zonara/") + copies.first()),
                         QSettings::IniFormat);
    QCOMPARE(copy.value(ZoneStore::zonesKey).toByteArray(), deep);
    QCOMPARE(names(), (QStringList{QStringLiteral("New York"), QStringLiteral("Tokyo")}));
    QVERIFY(run({"add", "UTC"}).err.isEmpty()); // said once
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
