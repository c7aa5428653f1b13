#include "PanelTestSupport.h"

#include "TimeZoneDatabase.h"

SavedZone makeZone(const QString &identifier, std::optional<QString> customLabel, bool isPinned)
{
    return {QUuid::createUuid(), identifier, std::move(customLabel), isPinned};
}

PanelFixture::PanelFixture(const QList<SavedZone> &zones, const QDateTime &now)
{
    preferences.writeBool(ZoneStore::seededKey, true);
    store = std::make_unique<ZoneStore>(preferences, TimeZoneDatabase::lookup());
    store->setZones(zones);
    clock =
        std::make_unique<Clock>([now] { return now; }, [] { return TimeZoneDatabase::localZone(); },
                                std::make_unique<IdleClockTimer>());
}

QStringList PanelFixture::displayNames() const
{
    QStringList names;
    for (const SavedZone &zone : store->zones())
        names.append(zone.displayName());
    return names;
}
