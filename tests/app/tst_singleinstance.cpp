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
    void secondLaunchForwards_data();
    void secondLaunchForwards();
    void argumentOnFirstLaunch_data();
    void argumentOnFirstLaunch();

private:
    std::unique_ptr<QProcess> launch(const QStringList &arguments);
    bool visible(const QString &title) const;

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

const QString settingsTitle = QStringLiteral("^Zonara Settings$");
const QString panelTitle = QStringLiteral("^Zonara$");

bool TestSingleInstance::visible(const QString &title) const
{
    QProcess search;
    search.start(QStringLiteral("xdotool"),
                 {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                  QStringLiteral("--name"), title});
    search.waitForFinished(5000);
    return search.exitCode() == 0 && !search.readAllStandardOutput().trimmed().isEmpty();
}

void TestSingleInstance::secondLaunchForwards_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("window"); // the title of the window it opens
    QTest::newRow("plain") << QStringList() << settingsTitle;
    QTest::newRow("--panel") << QStringList{QStringLiteral("--panel")} << panelTitle;
}

void TestSingleInstance::secondLaunchForwards()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, window);
    m_processes.push_back(launch({}));
    QTRY_VERIFY_WITH_TIMEOUT(
        QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(!m_watcher.items().isEmpty(), 10000);
    QVERIFY(!visible(window));

    QElapsedTimer elapsed;
    elapsed.start();
    std::unique_ptr<QProcess> second = launch(arguments);
    QVERIFY(second->waitForFinished(5000));
    const qint64 ms = elapsed.elapsed();
    qInfo("the second launch exited after %lld ms", ms);
    QCOMPARE(second->exitStatus(), QProcess::NormalExit);
    QCOMPARE(second->exitCode(), 0);
    QVERIFY2(ms < 1000, qPrintable(QString::number(ms)));

    QTRY_VERIFY_WITH_TIMEOUT(visible(window), 5000);
    QCOMPARE(m_processes.front()->state(), QProcess::Running);
}

void TestSingleInstance::argumentOnFirstLaunch_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("window"); // empty: refused
    QTest::newRow("--settings") << QStringList{QStringLiteral("--settings")} << settingsTitle;
    QTest::newRow("among others") << QStringList{QStringLiteral("-style"), QStringLiteral("fusion"),
                                                 QStringLiteral("--settings")}
                                  << settingsTitle;
    QTest::newRow("--panel") << QStringList{QStringLiteral("--panel")} << panelTitle;
    QTest::newRow("letter case") << QStringList{QStringLiteral("--Settings")} << QString();
    QTest::newRow("one hyphen") << QStringList{QStringLiteral("-settings")} << QString();
}

void TestSingleInstance::argumentOnFirstLaunch()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, window);
    m_processes.push_back(launch(arguments));
    if (window.isEmpty()) {
        // A near miss is an unknown option: refused before anything starts.
        QProcess &refused = *m_processes.back();
        QVERIFY(refused.waitForFinished(10000));
        QCOMPARE(refused.exitCode(), 2);
        QVERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName));
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(
        QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(visible(window), 5000);
}

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"
