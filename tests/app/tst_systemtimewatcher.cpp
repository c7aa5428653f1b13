#include "Clock.h"
#include "SystemTimeWatcher.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

namespace {

// Counts armings: a re-alignment arms a fresh one-shot for the next boundary.
class RecordingTimer final : public ClockTimer
{
public:
    void start(std::chrono::milliseconds delay, std::function<void()>) override
    {
        lastDelay = delay;
        ++armings;
    }
    void stop() override {}

    std::chrono::milliseconds lastDelay{0};
    int armings = 0;
};

// Plays logind and timedated on the private bus the test runs in.
class FakeSystemServices
{
public:
    FakeSystemServices()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                              QStringLiteral("fake-system-services")))
    {
        m_bus.interface()->registerService(QStringLiteral("org.freedesktop.login1"));
        m_bus.interface()->registerService(QStringLiteral("org.freedesktop.timedate1"));
    }
    ~FakeSystemServices()
    {
        QDBusConnection::disconnectFromBus(QStringLiteral("fake-system-services"));
    }

    void prepareForSleep(bool goingToSleep)
    {
        QDBusMessage signal = QDBusMessage::createSignal(
            QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"));
        signal << goingToSleep;
        m_bus.send(signal);
    }
    void timeDatePropertiesChanged(const QString &interface)
    {
        QDBusMessage signal = QDBusMessage::createSignal(
            QStringLiteral("/org/freedesktop/timedate1"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
        signal
            << interface << QVariantMap{{QStringLiteral("Timezone"), QStringLiteral("Asia/Tokyo")}}
            << QStringList();
        m_bus.send(signal);
    }

private:
    QDBusConnection m_bus;
};

// Sees the bus signals on the same connection as the watcher, after it.
class WakeSentinel final : public QObject
{
    Q_OBJECT

public:
    int wakes = 0;

public Q_SLOTS:
    void onPrepareForSleep(bool goingToSleep)
    {
        if (!goingToSleep)
            ++wakes;
    }
};

} // namespace

class TestSystemTimeWatcher final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void busSignalsRealignTheClock_data();
    void busSignalsRealignTheClock();
    void localTimeLinkChangeRealigns();
    void missingSourcesAreSkipped();

private:
    QTemporaryDir m_etc;
};

void TestSystemTimeWatcher::initTestCase()
{
    QVERIFY2(QDBusConnection::sessionBus().isConnected(), "run inside dbus-run-session");
    QVERIFY(m_etc.isValid());
}

void TestSystemTimeWatcher::busSignalsRealignTheClock_data()
{
    QTest::addColumn<QString>("event");
    QTest::addColumn<bool>("realigns");
    QTest::newRow("woke up") << "wake" << true;
    QTest::newRow("going to sleep") << "sleep" << false;
    QTest::newRow("time zone set") << "timedate1" << true;
    QTest::newRow("other interface") << "other" << false;
}

void TestSystemTimeWatcher::busSignalsRealignTheClock()
{
    QFETCH(QString, event);
    QFETCH(bool, realigns);

    FakeSystemServices services;
    SystemTimeWatcher::Sources sources;
    sources.systemBus = QDBusConnection::sessionBus();
    sources.configDirectory = m_etc.path();
    SystemTimeWatcher watcher(sources);
    QVERIFY(watcher.watchesSleep());
    QVERIFY(watcher.watchesTimeZoneService());

    QDateTime time(QDate(2026, 3, 2), QTime(12, 1, 0, 40), QTimeZone::utc());
    auto timer = std::make_unique<RecordingTimer>();
    RecordingTimer *recorder = timer.get();
    Clock clock([&time] { return time; }, [] { return QTimeZone::utc(); }, std::move(timer));
    QObject::connect(&watcher, &SystemTimeWatcher::timeChanged, &clock, &Clock::realign);
    const int armingsBefore = recorder->armings;

    WakeSentinel sentinel;
    QVERIFY(QDBusConnection::sessionBus().connect(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"),
        &sentinel, SLOT(onPrepareForSleep(bool))));

    QSignalSpy spy(&watcher, &SystemTimeWatcher::timeChanged);
    time = QDateTime(QDate(2026, 3, 2), QTime(18, 42, 30, 250), QTimeZone::utc());
    if (event == u"wake" || event == u"sleep")
        services.prepareForSleep(event == u"sleep");
    else
        services.timeDatePropertiesChanged(event == u"timedate1"
                                               ? QStringLiteral("org.freedesktop.timedate1")
                                               : QStringLiteral("org.example.Other"));
    // A wake-up always follows: once it is through, the first event has been
    // handled too, so no silence has to be waited out.
    services.prepareForSleep(false);
    QTRY_COMPARE_WITH_TIMEOUT(sentinel.wakes, event == u"wake" ? 2 : 1, 5000);
    QCOMPARE(spy.count(), realigns ? 2 : 1);

    QCOMPARE(clock.now(), time);
    QCOMPARE(recorder->armings - armingsBefore, realigns ? 2 : 1);
    QCOMPARE(recorder->lastDelay, std::chrono::milliseconds(29750));
}

void TestSystemTimeWatcher::localTimeLinkChangeRealigns()
{
    const QDir etc(m_etc.path());
    QFile::remove(etc.filePath(QStringLiteral("localtime")));
    QVERIFY(QFile::link(QStringLiteral("/usr/share/zoneinfo/Europe/Stockholm"),
                        etc.filePath(QStringLiteral("localtime"))));

    SystemTimeWatcher::Sources sources;
    sources.systemBus = QDBusConnection(QStringLiteral("no bus"));
    sources.configDirectory = m_etc.path();
    SystemTimeWatcher watcher(sources);
    QVERIFY(watcher.watchesLocalTimeFile());
    QSignalSpy spy(&watcher, &SystemTimeWatcher::timeChanged);

    // Something unrelated changes in the directory first: it must not count.
    QFile other(etc.filePath(QStringLiteral("hostname")));
    QVERIFY(other.open(QIODevice::WriteOnly));
    other.write("zonara-test\n");
    other.close();

    // Replaced the way timedatectl does it: a new link renamed over the old one.
    QVERIFY(QFile::link(QStringLiteral("/usr/share/zoneinfo/Asia/Tokyo"),
                        etc.filePath(QStringLiteral("localtime.new"))));
    QVERIFY(::rename(qPrintable(etc.filePath(QStringLiteral("localtime.new"))),
                     qPrintable(etc.filePath(QStringLiteral("localtime")))) == 0);
    QVERIFY(spy.wait(5000));
    QCOMPARE(spy.count(), 1);
}

void TestSystemTimeWatcher::missingSourcesAreSkipped()
{
    SystemTimeWatcher::Sources sources;
    sources.systemBus = QDBusConnection(QStringLiteral("no bus"));
    sources.configDirectory = m_etc.filePath(QStringLiteral("does-not-exist"));
    sources.watchClockChanges = false;
    SystemTimeWatcher watcher(sources);
    QVERIFY(!watcher.watchesSleep());
    QVERIFY(!watcher.watchesTimeZoneService());
    QVERIFY(!watcher.watchesLocalTimeFile());
    QVERIFY(!watcher.watchesClockChanges());

    // The real clock-change descriptor can always be made on Linux.
    SystemTimeWatcher withClock(SystemTimeWatcher::Sources{
        QDBusConnection(QStringLiteral("no bus")), sources.configDirectory, true});
    QVERIFY(withClock.watchesClockChanges());
}

QTEST_GUILESS_MAIN(TestSystemTimeWatcher)
#include "tst_systemtimewatcher.moc"
