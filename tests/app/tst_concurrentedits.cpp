#include "FakeStatusNotifierWatcher.h"
#include "SettingsPreferencesStore.h"
#include "ZoneListCodec.h"
#include "ZoneStore.h"

#include <QDBusConnectionInterface>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <memory>

// Many real `zonara` processes editing one preferences file at once, with and
// without the program running, and editors killed in the middle of a write.
class TestConcurrentEdits final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void fiftyAtOnce_data();
    void fiftyAtOnce();
    void killedEditorsLoseNothingAcknowledged();

private:
    std::unique_ptr<QProcess> start(const QStringList &arguments, bool direct);
    QSet<QString> storedNicknames();
    void startProgram();

    QStringList m_zones;
    FakeStatusNotifierWatcher m_watcher;
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<QProcess> m_program;
};

void TestConcurrentEdits::initTestCase()
{
    QVERIFY2(QDBusConnection::sessionBus().isConnected(), "run inside dbus-run-session");
    QVERIFY(m_watcher.start(QDBusConnection::sessionBus()));
    for (const QByteArray &id : QTimeZone::availableTimeZoneIds()) {
        if (id.startsWith("Europe/") && id.count('/') == 1 && m_zones.size() < 50)
            m_zones.append(QString::fromLatin1(id));
    }
    QCOMPARE(m_zones.size(), 50);
}

void TestConcurrentEdits::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
}

void TestConcurrentEdits::cleanup()
{
    if (m_program) {
        m_program->kill();
        m_program->waitForFinished(5000);
        m_program.reset();
    }
}

std::unique_ptr<QProcess> TestConcurrentEdits::start(const QStringList &arguments, bool direct)
{
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home->path());
    environment.insert(QStringLiteral("TZ"), QStringLiteral("Asia/Tokyo"));
    // Another session: the running program cannot be reached, the file can.
    if (direct)
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                           QStringLiteral("unix:path=/nonexistent/bus"));
    process->setProcessEnvironment(environment);
    process->start(QStringLiteral(ZONARA_BINARY), arguments);
    return process;
}

void TestConcurrentEdits::startProgram()
{
    m_program = start({}, false);
    QTRY_VERIFY_WITH_TIMEOUT(QDBusConnection::sessionBus().interface()->isServiceRegistered(
                                 QStringLiteral("io.github.zonara.Zonara")),
                             10000);
}

QSet<QString> TestConcurrentEdits::storedNicknames()
{
    const SettingsPreferencesStore file(m_home->filePath(QStringLiteral("zonara/zonara.conf")));
    const std::optional<QByteArray> bytes = file.readBytes(ZoneStore::zonesKey);
    const std::optional<QList<SavedZone>> zones =
        bytes ? ZoneListCodec::decode(*bytes) : std::nullopt;
    if (!zones)
        return {QStringLiteral("<unreadable>")};
    QSet<QString> nicknames;
    for (const SavedZone &zone : *zones)
        nicknames.insert(zone.customLabel.value_or(zone.identifier));
    return nicknames;
}

void TestConcurrentEdits::fiftyAtOnce_data()
{
    QTest::addColumn<bool>("programRunning");
    QTest::addColumn<int>("direct"); // how many edit the file, not the program
    QTest::newRow("no program") << false << 50;
    QTest::newRow("through the program") << true << 0;
    QTest::newRow("program and file mixed") << true << 25;
}

void TestConcurrentEdits::fiftyAtOnce()
{
    QFETCH(bool, programRunning);
    QFETCH(int, direct);
    if (programRunning)
        startProgram();
    if (QTest::currentTestFailed())
        return;

    std::vector<std::unique_ptr<QProcess>> editors;
    for (int i = 0; i < m_zones.size(); ++i)
        editors.push_back(start({"add", m_zones.at(i), "--nickname", m_zones.at(i)}, i < direct));
    for (const auto &editor : editors) {
        QVERIFY(editor->waitForFinished(90000));
        QVERIFY2(editor->exitCode() == 0, editor->readAllStandardError().constData());
    }
    const QSet<QString> all(m_zones.cbegin(), m_zones.cend());
    QVERIFY(storedNicknames().contains(all));
    if (!programRunning)
        return;
    // The program took in the edits it did not make, and its next own edit
    // keeps them.
    const auto listed = [this] {
        const auto list = start({"list", "--json"}, false);
        list->waitForFinished(10000);
        return QJsonDocument::fromJson(list->readAllStandardOutput()).array().size();
    };
    QTRY_COMPARE_WITH_TIMEOUT(listed(), qsizetype(51), 5000);
    const auto edit = start({"add", "UTC", "--nickname", "last"}, false);
    QVERIFY(edit->waitForFinished(10000));
    QCOMPARE(edit->exitCode(), 0);
    QVERIFY(storedNicknames().contains(all + QSet<QString>{QStringLiteral("last")}));
}

void TestConcurrentEdits::killedEditorsLoseNothingAcknowledged()
{
    QSet<QString> acknowledged;
    int kills = 0;
    int round = 0;
    while (kills < 200) {
        std::vector<std::unique_ptr<QProcess>> editors;
        QStringList names;
        for (int i = 0; i < 12; ++i) {
            names.append(QStringLiteral("n%1-%2").arg(round).arg(i));
            editors.push_back(start({"add", "UTC", "--nickname", names.last()}, true));
        }
        ++round;
        // Killed at any moment: starting, waiting for the lock, writing.
        QTest::qWait(QRandomGenerator::global()->bounded(10, 120));
        for (qsizetype i = 0; i < qsizetype(editors.size()); ++i) {
            QProcess &editor = *editors.at(i);
            if (editor.state() != QProcess::NotRunning && i != 0) {
                editor.kill();
                ++kills;
            }
            if (editor.state() != QProcess::NotRunning)
                QVERIFY(editor.waitForFinished(60000));
            if (editor.exitStatus() == QProcess::NormalExit && editor.exitCode() == 0)
                acknowledged.insert(names.at(i));
        }
        const QSet<QString> stored = storedNicknames();
        QVERIFY2(!stored.contains(QStringLiteral("<unreadable>")), qPrintable(names.first()));
        QVERIFY(stored.contains(acknowledged));
    }
    // Some edits finished: the loop did not only kill.
    QVERIFY(!acknowledged.isEmpty());
}

QTEST_GUILESS_MAIN(TestConcurrentEdits)
#include "tst_concurrentedits.moc"
