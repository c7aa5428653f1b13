#include "MenuBarFormatter.h"

#include "PosixTimeFormat.h"
#include "TimeZoneDatabase.h"
#include "ZoneLabel.h"

#include <QStringList>

namespace {

QString labelOf(const SavedZone &zone)
{
    // Not displayName(): without a nickname the tray wants the short code,
    // not the city name.
    if (zone.customLabel) {
        const QString nickname = trimmedText(*zone.customLabel);
        if (!nickname.isEmpty())
            return nickname;
    }
    return ZoneLabel::shortCode(zone.identifier);
}

} // namespace

namespace MenuBarFormatter {

QString timeString(MenuBarFormat format, const QDateTime &date, const QTimeZone &timeZone)
{
    switch (format) {
    case MenuBarFormat::labelTime24Seconds:
        return PosixTimeFormat::format(date, timeZone, u"HH:mm:ss");
    case MenuBarFormat::labelTime12: {
        // "9:05PM" becomes "9:05p".
        QString text = PosixTimeFormat::format(date, timeZone, u"h:mma").toLower();
        if (text.endsWith(u"am") || text.endsWith(u"pm"))
            text.chop(1);
        return text;
    }
    case MenuBarFormat::labelTime24:
    case MenuBarFormat::timeOnly24:
    case MenuBarFormat::labelDayTime24:
        break;
    }
    return PosixTimeFormat::format(date, timeZone, u"HH:mm");
}

std::optional<QString> daySuffixIfDifferent(const QDateTime &date, const QTimeZone &zoneTimeZone,
                                            const QTimeZone &localTimeZone)
{
    if (date.toTimeZone(zoneTimeZone).date() == date.toTimeZone(localTimeZone).date())
        return std::nullopt;
    return PosixTimeFormat::format(date, zoneTimeZone, u"EEE");
}

QString string(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &at,
               const QTimeZone &localTimeZone)
{
    QStringList pieces;
    for (const SavedZone &zone : zones) {
        if (!zone.isPinned)
            continue;
        const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
        if (!timeZone)
            continue;
        const QString time = timeString(format, at, *timeZone);
        if (format == MenuBarFormat::timeOnly24) {
            pieces.append(time);
            continue;
        }
        QString piece = labelOf(zone) + u' ';
        if (format == MenuBarFormat::labelDayTime24) {
            if (const auto day = daySuffixIfDifferent(at, *timeZone, localTimeZone))
                piece += *day + u' ';
        }
        pieces.append(piece + time);
    }
    return pieces.join(u"  ");
}

} // namespace MenuBarFormatter
