#include "FakeStatusNotifierWatcher.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString serviceName = QStringLiteral("io.github.zonara.Zonara");

} // namespace

class TestSingleInstance final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void secondLaunchOpensSettings();
    void settingsArgumentOnFirstLaunch_data();
    void settingsArgumentOnFirstLaunch();

private:
    std::unique_ptr<QProcess> launch(const QStringList &arguments);
    bool settingsVisible() const;

    QTemporaryDir m_home;
    FakeStatusNotifierWatcher m_watcher;
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

void TestSingleInstance::initTestCase()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    QVERIFY2(bus.isConnected(), "run inside dbus-run-session");
    QVERIFY2(!qEnvironmentVariableIsEmpty("DISPLAY"), "run under Xvfb");
    QVERIFY(!QStandardPaths::findExecutable(QStringLiteral("xdotool")).isEmpty());
    QVERIFY(m_watcher.start(bus));
    QVERIFY(m_home.isValid());
}

void TestSingleInstance::cleanup()
{
    for (auto &process : m_processes) {
        process->kill();
        process->waitForFinished(5000);
    }
    m_processes.clear();
    m_watcher.clear();
    QTRY_VERIFY_WITH_TIMEOUT(
        !QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName), 5000);
}

std::unique_ptr<QProcess> TestSingleInstance::launch(const QStringList &arguments)
{
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.path());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    process->setProcessEnvironment(environment);
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(QStringLiteral(ZONARA_BINARY), arguments);
    return process;
}

bool TestSingleInstance::settingsVisible() const
{
    QProcess search;
    search.start(QStringLiteral("xdotool"),
                 {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                  QStringLiteral("--name"), QStringLiteral("^Zonara Settings$")});
    search.waitForFinished(5000);
    return search.exitCode() == 0 && !search.readAllStandardOutput().trimmed().isEmpty();
}

void TestSingleInstance::secondLaunchOpensSettings()
{
    m_processes.push_back(launch({}));
    QTRY_VERIFY_WITH_TIMEOUT(
        QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(!m_watcher.items().isEmpty(), 10000);
    QVERIFY(!settingsVisible());

    QElapsedTimer elapsed;
    elapsed.start();
    std::unique_ptr<QProcess> second = launch({});
    QVERIFY(second->waitForFinished(5000));
    const qint64 ms = elapsed.elapsed();
    qInfo("the second launch exited after %lld ms", ms);
    QCOMPARE(second->exitStatus(), QProcess::NormalExit);
    QCOMPARE(second->exitCode(), 0);
    QVERIFY2(ms < 1000, qPrintable(QString::number(ms)));

    QTRY_VERIFY_WITH_TIMEOUT(settingsVisible(), 5000);
    QCOMPARE(m_processes.front()->state(), QProcess::Running);
}

void TestSingleInstance::settingsArgumentOnFirstLaunch_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("opens");
    QTest::newRow("exact") << QStringList{QStringLiteral("--settings")} << true;
    QTest::newRow("among others") << QStringList{QStringLiteral("-style"), QStringLiteral("fusion"),
                                                 QStringLiteral("--settings")}
                                  << true;
    QTest::newRow("letter case") << QStringList{QStringLiteral("--Settings")} << false;
    QTest::newRow("one hyphen") << QStringList{QStringLiteral("-settings")} << false;
}

void TestSingleInstance::settingsArgumentOnFirstLaunch()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, opens);
    m_processes.push_back(launch(arguments));
    if (!opens) {
        // A near miss is an unknown option: refused before anything starts.
        QProcess &refused = *m_processes.back();
        QVERIFY(refused.waitForFinished(10000));
        QCOMPARE(refused.exitCode(), 2);
        QVERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName));
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(
        QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(settingsVisible(), 5000);
}

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"
