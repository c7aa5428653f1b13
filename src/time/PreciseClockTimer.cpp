#include "PreciseClockTimer.h"

PreciseClockTimer::PreciseClockTimer()
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        if (m_onTimeout)
            m_onTimeout();
    });
}

void PreciseClockTimer::start(std::chrono::milliseconds delay, std::function<void()> onTimeout)
{
    m_timer.stop();
    m_onTimeout = std::move(onTimeout);
    m_timer.start(delay);
}

void PreciseClockTimer::stop()
{
    m_timer.stop();
    m_onTimeout = nullptr;
}
