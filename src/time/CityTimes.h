#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QTimeZone>

// Every saved city with its time at one instant, for the places that list
// them all beside the line: the tray's menu and tooltips, the command line,
// the panel applets.
namespace CityTimes {

struct Entry
{
    SavedZone zone;
    // As the city's card shows them: "21:05" (or "--:--" for a zone the
    // database does not know) and "JST · +8h" (or the bare identifier).
    QString time;
    QString subtitle;

    // "Tokyo 21:05"
    QString text() const;
    // "Tokyo 21:05 · JST · +8h"
    QString line() const;
};

Entry entryFor(const SavedZone &zone, MenuBarFormat format, const QDateTime &at,
               const QTimeZone &localZone);
// Pinned cities first, then the rest, each in list order.
QList<Entry> entries(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &at,
                     const QTimeZone &localZone);
// One line per city in that order: "Tokyo 21:05 · JST · +8h".
QString summary(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &at,
                const QTimeZone &localZone);

} // namespace CityTimes
