#include "ZoneMenu.h"

QList<ZoneMenu::Item> ZoneMenu::items(const QList<SavedZone> &zones, const SavedZone &zone,
                                      bool canShiftTime)
{
    const bool isFirst = !zones.isEmpty() && zones.constFirst().id == zone.id;
    const bool isLast = !zones.isEmpty() && zones.constLast().id == zone.id;
    const Item separator;

    QList<Item> items;
    items.append({Action::rename, QStringLiteral("Rename"), QStringLiteral("pencil")});
    if (zone.customLabel)
        items.append({Action::useCityName, QStringLiteral("Use city name"), {}});
    items.append(
        {Action::togglePin,
         zone.isPinned ? QStringLiteral("Unpin from menu bar") : QStringLiteral("Pin to menu bar"),
         {}});
    items.append({Action::copyTime, QStringLiteral("Copy time"), QStringLiteral("copy")});
    items.append({Action::copyAll, QStringLiteral("Copy all"), {}});
    if (canShiftTime)
        items.append({Action::setTime, QStringLiteral("Set time\u2026"), {}});
    items.append(separator);
    items.append({Action::moveUp, QStringLiteral("Move up"), QStringLiteral("arrow-up"), !isFirst});
    items.append(
        {Action::moveDown, QStringLiteral("Move down"), QStringLiteral("arrow-down"), !isLast});
    items.append(separator);
    items.append({Action::remove, QStringLiteral("Remove city\u2026"), {}, true, true});
    return items;
}

std::optional<SavedZone> ZoneMenu::target(const QList<SavedZone> &zones, const QSet<QUuid> &ids)
{
    for (const SavedZone &zone : zones) {
        if (ids.contains(zone.id))
            return zone;
    }
    return std::nullopt;
}
