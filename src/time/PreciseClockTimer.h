#pragma once

#include "ClockTimer.h"

#include <QTimer>

class QSocketNotifier;

// A timer that fires on time: a timerfd, which the kernel wakes within its
// small timer slack. A QTimer's wait ends in poll(), whose timeout the kernel
// may stretch by a thousandth (60 ms on a minute's wait); that QTimer, made
// precise so that it never fires early, stands in where no timerfd is had.
class PreciseClockTimer final : public ClockTimer
{
public:
    PreciseClockTimer();
    ~PreciseClockTimer() override;

    void start(std::chrono::milliseconds delay, std::function<void()> onTimeout) override;
    void stop() override;

private:
    void fire();

    int m_timerFd = -1;
    QSocketNotifier *m_notifier = nullptr;
    QTimer m_timer;
    std::function<void()> m_onTimeout;
};
