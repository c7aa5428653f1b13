#pragma once

#include "ClockTimer.h"

#include <QDateTime>
#include <QObject>
#include <QTimeZone>

#include <chrono>
#include <functional>
#include <memory>

// The one source of the current time for everything on screen. `now` changes
// exactly when a visible time could: at every minute boundary, or every second
// boundary while seconds are shown.
class Clock final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QDateTime now READ now NOTIFY nowChanged)
    Q_PROPERTY(bool showsSeconds READ showsSeconds NOTIFY showsSecondsChanged)

public:
    using TimeSource = std::function<QDateTime()>;
    using ZoneSource = std::function<QTimeZone()>;

    // The system time, the system's zone and a precise Qt timer.
    explicit Clock(QObject *parent = nullptr);
    Clock(TimeSource timeSource, ZoneSource localZone, std::unique_ptr<ClockTimer> timer,
          QObject *parent = nullptr);
    ~Clock() override;

    QDateTime now() const { return m_now; }
    // Announces only an instant that differs from the current one.
    void setNow(const QDateTime &now);

    bool showsSeconds() const { return m_showsSeconds; }
    void setShowsSeconds(bool showsSeconds);

    // The wait from an instant to the next boundary, raised to the floor of
    // the mode (0.05 s for minutes, 0.01 s for seconds).
    static std::chrono::milliseconds firstDelay(const QDateTime &now, bool showsSeconds,
                                                const QTimeZone &localZone);

    // The first minute (or second) boundary strictly after an instant.
    static QDateTime nextBoundary(const QDateTime &now, bool showsSeconds,
                                  const QTimeZone &localZone);

public Q_SLOTS:
    // Takes the time afresh and waits for the next boundary again; for a
    // changed system clock or zone, and after sleep.
    void realign();

Q_SIGNALS:
    void nowChanged();
    void showsSecondsChanged();

private:
    void reschedule();
    void onBoundary();

    TimeSource m_timeSource;
    ZoneSource m_localZone;
    std::unique_ptr<ClockTimer> m_timer;
    QDateTime m_now;
    bool m_showsSeconds = false;
};
