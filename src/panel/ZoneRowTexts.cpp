#include "ZoneRowTexts.h"

#include "MenuBarFormatter.h"
#include "TimeZoneDatabase.h"
#include "ZoneOffset.h"

namespace ZoneRowTexts {

QString timeText(const SavedZone &zone, MenuBarFormat format, const QDateTime &now)
{
    const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
    if (!timeZone)
        return QStringLiteral("--:--");
    return MenuBarFormatter::timeString(format, now, *timeZone);
}

QString subtitle(const SavedZone &zone, const QDateTime &now, const QTimeZone &localZone)
{
    const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
    if (!timeZone)
        return zone.identifier;
    const QString offset = ZoneOffset::info(*timeZone, now, localZone).subtitle();
    if (zone.customLabel)
        return cityPart(zone.identifier) + QStringLiteral(" \u00B7 ") + offset;
    return offset;
}

QString timeAccessibleName(const QString &displayName, const QString &timeText)
{
    return QStringLiteral("Time in ") + displayName + QStringLiteral(": ") + timeText;
}

QString pinToolTip(bool isPinned)
{
    return isPinned ? QStringLiteral("Unpin from menu bar") : QStringLiteral("Pin to menu bar");
}

QString pinAccessibleName(const SavedZone &zone)
{
    return (zone.isPinned ? QStringLiteral("Unpin ") : QStringLiteral("Pin ")) + zone.displayName();
}

QString renameAccessibleName(const SavedZone &zone)
{
    return QStringLiteral("Rename ") + zone.displayName();
}

QString nicknameAccessibleName(const SavedZone &zone)
{
    return QStringLiteral("Nickname for ") + cityPart(zone.identifier);
}

std::optional<QString> copyText(const SavedZone &zone, MenuBarFormat format, const QDateTime &now)
{
    const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
    if (!timeZone)
        return std::nullopt;
    return zone.displayName() + u' ' + MenuBarFormatter::timeString(format, now, *timeZone);
}

} // namespace ZoneRowTexts
