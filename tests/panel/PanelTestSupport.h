#pragma once

#include "Clock.h"
#include "MemoryPreferencesStore.h"
#include "SavedZone.h"
#include "ZoneStore.h"

#include <QDateTime>
#include <QList>

#include <memory>

// A clock timer that never fires: tests move the clock with Clock::setNow.
class IdleClockTimer final : public ClockTimer
{
public:
    void start(std::chrono::milliseconds, std::function<void()>) override {}
    void stop() override {}
};

SavedZone makeZone(const QString &identifier, std::optional<QString> customLabel = std::nullopt,
                   bool isPinned = false);

// A store over in-memory preferences, already seeded with the given zones,
// and a clock standing at `now`.
struct PanelFixture
{
    explicit PanelFixture(const QList<SavedZone> &zones,
                          const QDateTime &now = QDateTime(QDate(2026, 3, 2), QTime(0, 30),
                                                           QTimeZone::utc()));

    QUuid id(int index) const { return store->zones().at(index).id; }
    QStringList displayNames() const;

    MemoryPreferencesStore preferences;
    std::unique_ptr<ZoneStore> store;
    std::unique_ptr<Clock> clock;
};
