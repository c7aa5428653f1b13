#include "CityTimes.h"

#include "MenuBarFormatter.h"
#include "TimeZoneDatabase.h"
#include "ZoneOffset.h"

#include <QStringList>

namespace CityTimes {

QString Entry::text() const
{
    return zone.displayName() + u' ' + time;
}

QString Entry::line() const
{
    return text() + QStringLiteral(" · ") + subtitle;
}

Entry entryFor(const SavedZone &zone, MenuBarFormat format, const QDateTime &at,
               const QTimeZone &localZone)
{
    const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
    if (!timeZone)
        return {zone, QStringLiteral("--:--"), zone.identifier};
    return {zone, MenuBarFormatter::timeString(format, at, *timeZone),
            ZoneOffset::info(*timeZone, at, localZone).subtitle()};
}

QList<Entry> entries(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &at,
                     const QTimeZone &localZone)
{
    QList<Entry> result;
    result.reserve(zones.size());
    for (const bool pinned : {true, false}) {
        for (const SavedZone &zone : zones) {
            if (zone.isPinned == pinned)
                result.append(entryFor(zone, format, at, localZone));
        }
    }
    return result;
}

QString summary(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &at,
                const QTimeZone &localZone)
{
    QStringList lines;
    for (const Entry &entry : entries(zones, format, at, localZone))
        lines.append(entry.line());
    return lines.join(u'\n');
}

} // namespace CityTimes
