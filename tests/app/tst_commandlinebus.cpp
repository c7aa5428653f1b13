#include "FakeStatusNotifierWatcher.h"
#include "SettingsPreferencesStore.h"
#include "ZoneListCodec.h"
#include "ZoneStore.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString serviceName = QStringLiteral("io.github.zonara.Zonara");
const QString objectPath = QStringLiteral("/io/github/zonara/Zonara");
const QString zonesInterface = QStringLiteral("io.github.zonara.Zones1");

} // namespace

// The command line next to a running Zonara: every edit goes through it.
class TestCommandLineBus final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void editsReachTheRunningInstance();
    void lineReachesApplets_data();
    void lineReachesApplets();
    void refusedEditsChangeNothing_data();
    void refusedEditsChangeNothing();

private:
    QProcessEnvironment environment() const;
    int run(const QStringList &arguments, QString *out = nullptr);
    QString trayLabel();
    QString callZones(const QString &method);
    QString cliLine();
    Q_SLOT void lineChanged(const QString &line) { m_lines.append(line); }

    QTemporaryDir m_home;
    FakeStatusNotifierWatcher m_watcher;
    QProcess m_zonara;
    QStringList m_lines;
};

QProcessEnvironment TestCommandLineBus::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.path());
    environment.insert(QStringLiteral("TZ"), QStringLiteral("Europe/Stockholm"));
    return environment;
}

void TestCommandLineBus::initTestCase()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    QVERIFY2(bus.isConnected(), "run inside dbus-run-session");
    QVERIFY(m_watcher.start(bus));
    QVERIFY(bus.connect(serviceName, objectPath, zonesInterface, QStringLiteral("LineChanged"),
                        this, SLOT(lineChanged(QString))));
    QVERIFY(m_home.isValid());

    SettingsPreferencesStore preferences(m_home.filePath(QStringLiteral("zonara/zonara.conf")));
    const QList<SavedZone> zones{
        {QUuid::createUuid(), QStringLiteral("Europe/London"), std::nullopt, true}};
    preferences.writeBytes(ZoneStore::zonesKey, *ZoneListCodec::encode(zones));
    preferences.writeBool(ZoneStore::seededKey, true);

    m_zonara.setProcessEnvironment(environment());
    m_zonara.setProcessChannelMode(QProcess::ForwardedChannels);
    m_zonara.start(QStringLiteral(ZONARA_BINARY), QStringList());
    QTRY_VERIFY_WITH_TIMEOUT(bus.interface()->isServiceRegistered(serviceName), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(!m_watcher.items().isEmpty(), 10000);
}

void TestCommandLineBus::cleanupTestCase()
{
    m_zonara.kill();
    m_zonara.waitForFinished(5000);
}

int TestCommandLineBus::run(const QStringList &arguments, QString *out)
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(QStringLiteral(ZONARA_BINARY), arguments);
    if (!process.waitForFinished(30000))
        return -1;
    if (out)
        *out = QString::fromUtf8(process.readAllStandardOutput());
    return process.exitCode();
}

QString TestCommandLineBus::trayLabel()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_watcher.items().constFirst(), QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << QStringLiteral("org.kde.StatusNotifierItem") << QStringLiteral("XAyatanaLabel");
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 5000);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return QStringLiteral("<no answer>");
    return reply.arguments().constFirst().value<QDBusVariant>().variant().toString();
}

void TestCommandLineBus::editsReachTheRunningInstance()
{
    QTRY_COMPARE_WITH_TIMEOUT(trayLabel().left(4), QStringLiteral("LON "), 5000);

    QCOMPARE(run({"add", "Asia/Tokyo", "--pin"}), 0);
    // The running instance knows at once: its tray line already has Tokyo.
    QTRY_VERIFY_WITH_TIMEOUT(trayLabel().contains(QStringLiteral("TYO ")), 5000);
    QCOMPARE(run({"add", "Asia/Tokyo", "--pin"}), 1);

    // Its next own edits keep what the command line added.
    QCOMPARE(run({"unpin", "London"}), 0);
    QCOMPARE(run({"rename", "Tokyo", "Office"}), 0);
    QTRY_VERIFY_WITH_TIMEOUT(trayLabel().startsWith(QStringLiteral("Office ")), 5000);
    QCOMPARE(run({"format", "timeOnly24"}), 0);
    QTRY_VERIFY_WITH_TIMEOUT(!trayLabel().contains(QStringLiteral("Office")), 5000);

    QString out;
    QCOMPARE(run({"list", "--json"}, &out), 0);
    const QJsonArray zones = QJsonDocument::fromJson(out.toUtf8()).array();
    QCOMPARE(zones.size(), 2);
    QCOMPARE(zones.at(0).toObject().value("pinned").toBool(), false);
    QCOMPARE(zones.at(1).toObject().value("displayName").toString(), QStringLiteral("Office"));

    // What the instance holds is what its file holds.
    SettingsPreferencesStore file(m_home.filePath(QStringLiteral("zonara/zonara.conf")));
    const std::optional<QList<SavedZone>> stored =
        ZoneListCodec::decode(file.readBytes(ZoneStore::zonesKey).value_or(QByteArray()));
    QVERIFY(stored);
    QCOMPARE(stored->size(), 2);
    QCOMPARE(stored->at(1).customLabel, std::optional(QStringLiteral("Office")));
    QCOMPARE(file.readText(ZoneStore::formatKey), std::optional(QStringLiteral("timeOnly24")));
    QCOMPARE(m_zonara.state(), QProcess::Running);
}

QString TestCommandLineBus::callZones(const QString &method)
{
    const QDBusMessage reply = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(serviceName, objectPath, zonesInterface, method),
        QDBus::Block, 5000);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return QStringLiteral("<no answer>");
    return reply.arguments().constFirst().toString();
}

QString TestCommandLineBus::cliLine()
{
    QString out;
    run({"line"}, &out);
    return out.chopped(out.endsWith(u'\n') ? 1 : 0);
}

void TestCommandLineBus::lineReachesApplets_data()
{
    // After the edits above: London, then Tokyo as "Office", pinned; times only.
    QTest::addColumn<QStringList>("edit");
    QTest::addColumn<bool>("changesLine");
    QTest::addColumn<QString>("firstCity");
    QTest::newRow("pinned city") << QStringList{"add", "Asia/Kolkata", "--pin"} << true
                                 << QStringLiteral("Office ");
    QTest::newRow("unpinned city")
        << QStringList{"add", "America/New_York"} << false << QStringLiteral("Office ");
    QTest::newRow("hidden nickname")
        << QStringList{"rename", "Kolkata", "Desk"} << false << QStringLiteral("Office ");
    QTest::newRow("labels shown") << QStringList{"format", "labelTime24"} << true
                                  << QStringLiteral("Office ");
    QTest::newRow("pinned later") << QStringList{"unpin", "Office"} << true
                                  << QStringLiteral("Desk ");
    QTest::newRow("globe") << QStringList{"unpin", "Desk"} << true << QStringLiteral("London ");
}

void TestCommandLineBus::lineReachesApplets()
{
    QFETCH(QStringList, edit);
    QFETCH(bool, changesLine);
    QFETCH(QString, firstCity);
    m_lines.clear();
    const QString before = callZones(QStringLiteral("Line"));

    QCOMPARE(run(edit), 0);
    // The line an applet reads is the one the command line computes.
    QTRY_COMPARE_WITH_TIMEOUT(callZones(QStringLiteral("Line")), cliLine(), 5000);
    if (changesLine) {
        QTRY_VERIFY_WITH_TIMEOUT(
            !m_lines.isEmpty() && m_lines.last() == callZones(QStringLiteral("Line")), 5000);
    }
    // The reply above came after any signal of the edit; each signal is a new
    // line (a minute may tick in between, an edit that shows nothing new never).
    QCoreApplication::processEvents();
    QString previous = before;
    for (const QString &line : std::as_const(m_lines)) {
        QVERIFY2(line != previous, qPrintable(line));
        previous = line;
    }

    const QStringList cities = callZones(QStringLiteral("Cities")).split(u'\n');
    QVERIFY2(cities.constFirst().startsWith(firstCity), qPrintable(cities.constFirst()));
    const QDBusMessage stored = QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
        serviceName, objectPath, zonesInterface, QStringLiteral("Zones")));
    const std::optional<QList<SavedZone>> zones =
        ZoneListCodec::decode(stored.arguments().value(0).toByteArray());
    QVERIFY(zones);
    QCOMPARE(cities.size(), zones->size());
}

void TestCommandLineBus::refusedEditsChangeNothing_data()
{
    QTest::addColumn<QString>("nickname");
    QTest::addColumn<qint64>("deadlineFromNow");
    QTest::addColumn<QString>("error");
    // The caller stops waiting before the edit could be sure to end.
    QTest::newRow("deadline too near")
        << "Late" << qint64(1000) << "org.freedesktop.DBus.Error.TimedOut";
    QTest::newRow("deadline passed")
        << "Late" << qint64(-1000) << "org.freedesktop.DBus.Error.TimedOut";
    QTest::newRow("nickname too long")
        << QString(101, u'n') << qint64(600000) << "org.freedesktop.DBus.Error.InvalidArgs";
}

void TestCommandLineBus::refusedEditsChangeNothing()
{
    QFETCH(QString, nickname);
    QFETCH(qint64, deadlineFromNow);
    QFETCH(QString, error);
    QString before;
    QCOMPARE(run({"list", "--json"}, &before), 0);

    QDBusMessage call = QDBusMessage::createMethodCall(
        serviceName, QStringLiteral("/io/github/zonara/Zonara"),
        QStringLiteral("io.github.zonara.Zones1"), QStringLiteral("Add"));
    call << QStringLiteral("Europe/Paris") << true << nickname << false
         << QDateTime::currentMSecsSinceEpoch() + deadlineFromNow;
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 5000);
    QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(reply.errorName(), error);

    // Nothing arrives later either.
    QTest::qWait(200);
    QString after;
    QCOMPARE(run({"list", "--json"}, &after), 0);
    QCOMPARE(after, before);
}

QTEST_GUILESS_MAIN(TestCommandLineBus)
#include "tst_commandlinebus.moc"
