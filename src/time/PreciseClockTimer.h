#pragma once

#include "ClockTimer.h"

#include <QTimer>

// A QTimer with millisecond precision: a coarse timer may fire up to 5% early,
// which would show the old minute for a whole minute more.
class PreciseClockTimer final : public ClockTimer
{
public:
    PreciseClockTimer();

    void start(std::chrono::milliseconds delay, std::function<void()> onTimeout) override;
    void stop() override;

private:
    QTimer m_timer;
    std::function<void()> m_onTimeout;
};
