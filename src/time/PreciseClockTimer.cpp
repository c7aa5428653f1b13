#include "PreciseClockTimer.h"

#include <QSocketNotifier>

#include <cstdint>
#include <sys/timerfd.h>
#include <unistd.h>

PreciseClockTimer::PreciseClockTimer()
{
    m_timerFd = ::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    if (m_timerFd >= 0) {
        m_notifier = new QSocketNotifier(m_timerFd, QSocketNotifier::Read, &m_timer);
        QObject::connect(m_notifier, &QSocketNotifier::activated, &m_timer, [this] {
            uint64_t expirations = 0;
            if (::read(m_timerFd, &expirations, sizeof expirations) > 0)
                fire();
        });
    }
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { fire(); });
}

PreciseClockTimer::~PreciseClockTimer()
{
    delete m_notifier;
    if (m_timerFd >= 0)
        ::close(m_timerFd);
}

void PreciseClockTimer::start(std::chrono::milliseconds delay, std::function<void()> onTimeout)
{
    stop();
    m_onTimeout = std::move(onTimeout);
    if (m_timerFd < 0) {
        m_timer.start(delay);
        return;
    }
    // A zero expiry would disarm it.
    const std::chrono::milliseconds wait = std::max(delay, std::chrono::milliseconds(1));
    itimerspec spec{};
    spec.it_value.tv_sec = wait.count() / 1000;
    spec.it_value.tv_nsec = (wait.count() % 1000) * 1'000'000;
    ::timerfd_settime(m_timerFd, 0, &spec, nullptr);
}

void PreciseClockTimer::stop()
{
    m_timer.stop();
    if (m_timerFd >= 0) {
        const itimerspec disarmed{};
        ::timerfd_settime(m_timerFd, 0, &disarmed, nullptr);
    }
    m_onTimeout = nullptr;
}

void PreciseClockTimer::fire()
{
    // Taken first: the callback usually arms the next tick.
    const std::function<void()> onTimeout = std::move(m_onTimeout);
    m_onTimeout = nullptr;
    if (onTimeout)
        onTimeout();
}
