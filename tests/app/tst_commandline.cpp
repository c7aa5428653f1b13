#include "MenuBarFormat.h"
#include "SettingsPreferencesStore.h"
#include "ZoneListCodec.h"
#include "ZoneStore.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

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
    void lineFollowsLocalZone_data();
    void lineFollowsLocalZone();
    void nothingPinnedPrintsEmptyLine();
    void readingWritesNothing();
    void errors_data();
    void errors();

private:
    void saveZones(const QList<SavedZone> &zones, const QString &format = QString());
    Result run(const QStringList &arguments,
               const QString &tz = QStringLiteral("America/New_York"));
    QString configFile() const { return m_home->filePath(QStringLiteral("zonara/zonara.conf")); }

    std::unique_ptr<QTemporaryDir> m_home;
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

Result TestCommandLine::run(const QStringList &arguments, const QString &tz)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home->path());
    environment.insert(QStringLiteral("TZ"), tz);
    // The user's locale must not change any text.
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    process.setProcessEnvironment(environment);
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
    QCOMPARE(run({QStringLiteral("line")}).exitCode, 0);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
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

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
