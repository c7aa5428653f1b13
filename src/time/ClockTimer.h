#pragma once

#include <chrono>
#include <functional>

// The one timer of the clock, a one-shot. Starting it replaces whatever was
// armed, so at most one timer is ever armed. Tests use their own to step
// through ticks.
class ClockTimer
{
public:
    virtual ~ClockTimer() = default;

    // Fires once after the delay.
    virtual void start(std::chrono::milliseconds delay, std::function<void()> onTimeout) = 0;
    virtual void stop() = 0;

protected:
    ClockTimer() = default;
};
