#include "Clock.h"

#include "PreciseClockTimer.h"
#include "TimeZoneDatabase.h"

#include <algorithm>

using namespace std::chrono_literals;

Clock::Clock(QObject *parent)
    : Clock(&QDateTime::currentDateTimeUtc, &TimeZoneDatabase::localZone,
            std::make_unique<PreciseClockTimer>(), parent)
{}

Clock::Clock(TimeSource timeSource, ZoneSource localZone, std::unique_ptr<ClockTimer> timer,
             QObject *parent)
    : QObject(parent)
    , m_timeSource(std::move(timeSource))
    , m_localZone(std::move(localZone))
    , m_timer(std::move(timer))
    , m_now(m_timeSource())
{
    reschedule();
}

Clock::~Clock()
{
    m_timer->stop();
}

void Clock::setNow(const QDateTime &now)
{
    if (now == m_now)
        return;
    m_now = now;
    Q_EMIT nowChanged();
}

void Clock::setShowsSeconds(bool showsSeconds)
{
    if (showsSeconds == m_showsSeconds)
        return;
    m_showsSeconds = showsSeconds;
    Q_EMIT showsSecondsChanged();
    setNow(m_timeSource());
    reschedule();
}

QDateTime Clock::nextBoundary(const QDateTime &now, bool showsSeconds, const QTimeZone &localZone)
{
    if (showsSeconds) {
        // The fraction of the second is the same from any whole-second epoch.
        qint64 fraction = now.toMSecsSinceEpoch() % 1000;
        if (fraction < 0)
            fraction += 1000;
        return now.addMSecs(1000 - fraction);
    }
    const QTime time = now.toTimeZone(localZone).time();
    return now.addMSecs(60'000 - time.second() * 1000 - time.msec());
}

std::chrono::milliseconds Clock::firstDelay(const QDateTime &now, bool showsSeconds,
                                            const QTimeZone &localZone)
{
    const std::chrono::milliseconds delay(now.msecsTo(nextBoundary(now, showsSeconds, localZone)));
    return std::max(delay, showsSeconds ? 10ms : 50ms);
}

void Clock::realign()
{
    setNow(m_timeSource());
    reschedule();
}

void Clock::reschedule()
{
    // From the time now, not from `now`: everything that followed the change
    // of `now` took time, and the next tick would land that much late.
    m_timer->start(firstDelay(m_timeSource(), m_showsSeconds, m_localZone()),
                   [this] { onBoundary(); });
}

void Clock::onBoundary()
{
    setNow(m_timeSource());
    // Armed afresh for every boundary: a repeating timer keeps its own
    // monotonic period and lands later each minute, and a tick that came
    // early or after a sleep finds its boundary again the same way.
    reschedule();
}
