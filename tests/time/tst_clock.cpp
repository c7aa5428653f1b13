#include "Clock.h"
#include "PreciseClockTimer.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

namespace {

// Records every arming; the test fires it by hand.
class FakeTimer final : public ClockTimer
{
public:
    struct Arming
    {
        std::chrono::milliseconds delay;
    };

    void start(std::chrono::milliseconds delay, std::function<void()> onTimeout) override
    {
        armings.append({delay});
        m_onTimeout = std::move(onTimeout);
        armed = true;
    }
    void stop() override { armed = false; }
    void fire()
    {
        QVERIFY(armed);
        const auto onTimeout = m_onTimeout;
        armed = false;
        onTimeout();
    }

    QList<Arming> armings;
    bool armed = false;

private:
    std::function<void()> m_onTimeout;
};

QDateTime at(const QString &time)
{
    return QDateTime(QDate(2026, 3, 2), QTime::fromString(time, u"HH:mm:ss.zzz"), QTimeZone::utc());
}

struct Fixture
{
    explicit Fixture(const QString &start, const QTimeZone &zone = QTimeZone::utc())
        : time(at(start))
    {
        auto fake = std::make_unique<FakeTimer>();
        timer = fake.get();
        clock = std::make_unique<Clock>([this] { return time; }, [zone] { return zone; },
                                        std::move(fake));
    }
    FakeTimer::Arming last() const { return timer->armings.constLast(); }

    QDateTime time;
    FakeTimer *timer = nullptr;
    std::unique_ptr<Clock> clock;
};

} // namespace

class TestClock final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstDelay_data();
    void firstDelay();
    void startsAlignedAndIgnoresNoChange();
    void eachTickArmsTheNextBoundary_data();
    void eachTickArmsTheNextBoundary();
    void switchingToSecondsRearms();
    void realignTakesTheTimeAndRearms_data();
    void realignTakesTheTimeAndRearms();
    void preciseTimerFiresOnlyItsLastArming();
};

void TestClock::firstDelay_data()
{
    QTest::addColumn<QString>("time");
    QTest::addColumn<bool>("seconds");
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<int>("expectedMs");
    QTest::newRow("floor near the minute") << "12:00:59.990" << false << QByteArray("UTC") << 50;
    QTest::newRow("half past") << "12:00:30.250" << false << QByteArray("UTC") << 29750;
    QTest::newRow("on the minute") << "12:00:00.000" << false << QByteArray("UTC") << 60000;
    QTest::newRow("just after") << "12:00:00.001" << false << QByteArray("UTC") << 59999;
    QTest::newRow("quarter-hour zone")
        << "12:00:30.250" << false << QByteArray("Asia/Kathmandu") << 29750;
    QTest::newRow("second floor") << "12:00:30.995" << true << QByteArray("UTC") << 10;
    QTest::newRow("second quarter") << "12:00:30.250" << true << QByteArray("UTC") << 750;
    QTest::newRow("on the second") << "12:00:30.000" << true << QByteArray("UTC") << 1000;
}

void TestClock::firstDelay()
{
    QFETCH(QString, time);
    QFETCH(bool, seconds);
    QFETCH(QByteArray, zone);
    QFETCH(int, expectedMs);
    const QTimeZone timeZone(zone);
    QVERIFY(timeZone.isValid());
    QCOMPARE(Clock::firstDelay(at(time), seconds, timeZone), std::chrono::milliseconds(expectedMs));
}

void TestClock::startsAlignedAndIgnoresNoChange()
{
    Fixture f(QStringLiteral("12:00:30.250"));
    QCOMPARE(f.clock->now(), at(QStringLiteral("12:00:30.250")));
    QVERIFY(!f.clock->showsSeconds());
    QCOMPARE(f.timer->armings.size(), 1);
    QCOMPARE(f.last().delay, 29750ms);

    // The same setting neither re-arms nor re-reads the time; neither it nor
    // the same time is announced.
    QSignalSpy nowSpy(f.clock.get(), &Clock::nowChanged);
    QSignalSpy secondsSpy(f.clock.get(), &Clock::showsSecondsChanged);
    f.time = at(QStringLiteral("12:00:40.000"));
    f.clock->setShowsSeconds(false);
    QCOMPARE(f.timer->armings.size(), 1);
    QCOMPARE(f.clock->now(), at(QStringLiteral("12:00:30.250")));
    f.clock->setNow(at(QStringLiteral("12:00:30.250")));
    QCOMPARE(nowSpy.count(), 0);
    QCOMPARE(secondsSpy.count(), 0);
    f.clock->setNow(at(QStringLiteral("12:00:30.251")));
    QCOMPARE(nowSpy.count(), 1);
}

void TestClock::eachTickArmsTheNextBoundary_data()
{
    QTest::addColumn<bool>("seconds");
    QTest::addColumn<QString>("firedAt");
    // How long the observers of the new `now` take.
    QTest::addColumn<int>("workMs");
    QTest::addColumn<int>("expectedMs");
    QTest::newRow("late by 41 ms") << false << "12:01:00.041" << 0 << 59959;
    // Measured from after the work, or the next tick lands that much late.
    QTest::newRow("after 30 ms of work") << false << "12:01:00.041" << 30 << 59929;
    // The timer drifted from wall time: the boundary is still ahead.
    QTest::newRow("early") << false << "12:00:59.980" << 0 << 50;
    // Asleep without notice: minutes late, mid-minute.
    QTest::newRow("minutes late") << false << "12:07:20.500" << 0 << 39500;
    QTest::newRow("seconds, late by 12 ms") << true << "12:00:42.012" << 0 << 988;
}

void TestClock::eachTickArmsTheNextBoundary()
{
    QFETCH(bool, seconds);
    QFETCH(QString, firedAt);
    QFETCH(int, workMs);
    QFETCH(int, expectedMs);
    Fixture f(QStringLiteral("12:00:30.250"));
    f.clock->setShowsSeconds(seconds);
    QSignalSpy spy(f.clock.get(), &Clock::nowChanged);
    QObject::connect(f.clock.get(), &Clock::nowChanged, f.clock.get(),
                     [&f, workMs] { f.time = f.time.addMSecs(workMs); });
    const qsizetype armings = f.timer->armings.size();
    const QDateTime fired = at(firedAt);
    f.time = fired;
    f.timer->fire();
    QCOMPARE(f.clock->now(), fired);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(f.timer->armings.size(), armings + 1);
    QCOMPARE(f.last().delay, std::chrono::milliseconds(expectedMs));
    QVERIFY(f.timer->armed);
}

void TestClock::switchingToSecondsRearms()
{
    Fixture f(QStringLiteral("12:00:30.250"));
    QSignalSpy secondsSpy(f.clock.get(), &Clock::showsSecondsChanged);
    f.time = at(QStringLiteral("12:00:41.995"));
    f.clock->setShowsSeconds(true);
    QCOMPARE(secondsSpy.count(), 1);
    QCOMPARE(f.clock->now(), f.time);
    QCOMPARE(f.last().delay, 10ms);

    f.time = at(QStringLiteral("12:00:42.500"));
    f.clock->setShowsSeconds(false);
    QCOMPARE(f.last().delay, 17500ms);
}

void TestClock::realignTakesTheTimeAndRearms_data()
{
    QTest::addColumn<bool>("seconds");
    QTest::addColumn<QString>("newTime");
    QTest::addColumn<int>("expectedMs");
    QTest::newRow("clock set back") << false << "11:15:10.000" << 50000;
    QTest::newRow("seconds") << true << "09:00:00.600" << 400;
}

void TestClock::realignTakesTheTimeAndRearms()
{
    QFETCH(bool, seconds);
    QFETCH(QString, newTime);
    QFETCH(int, expectedMs);
    Fixture f(QStringLiteral("12:00:30.250"));
    f.clock->setShowsSeconds(seconds);
    f.time = at(seconds ? QStringLiteral("12:00:31.010") : QStringLiteral("12:01:00.010"));
    f.timer->fire();

    f.time = at(newTime);
    f.clock->realign();
    QCOMPARE(f.clock->now(), f.time);
    QCOMPARE(f.last().delay, std::chrono::milliseconds(expectedMs));
}

// The real timer, as the clock drives it: armed again from its own callback,
// replaced before it fires, and stopped.
void TestClock::preciseTimerFiresOnlyItsLastArming()
{
    using namespace std::chrono_literals;
    PreciseClockTimer timer;
    QStringList fired;
    timer.start(60s, [&] { fired << QStringLiteral("replaced"); });
    timer.start(5ms, [&] {
        fired << QStringLiteral("first");
        timer.start(5ms, [&] { fired << QStringLiteral("again"); });
    });
    QTRY_COMPARE_WITH_TIMEOUT(fired, (QStringList{"first", "again"}), 5000);

    timer.start(5ms, [&] { fired << QStringLiteral("stopped"); });
    timer.stop();
    timer.start(20ms, [&] { fired << QStringLiteral("last"); });
    QTRY_COMPARE_WITH_TIMEOUT(fired, (QStringList{"first", "again", "last"}), 5000);
}

QTEST_GUILESS_MAIN(TestClock)
#include "tst_clock.moc"
