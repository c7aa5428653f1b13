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

namespace {

// The pinned zones the database knows, each as the piece the line shows.
template<typename Piece>
QString joined(const QList<SavedZone> &zones, MenuBarFormat format, Piece &&piece)
{
    QStringList pieces;
    for (const SavedZone &zone : zones) {
        if (!zone.isPinned)
            continue;
        const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
        if (!timeZone)
            continue;
        QString text = piece(*timeZone);
        if (format != MenuBarFormat::timeOnly24)
            text.prepend(labelOf(zone) + u' ');
        pieces.append(text);
    }
    return pieces.join(u"  ");
}

} // namespace

QString string(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &at,
               const QTimeZone &localTimeZone)
{
    return joined(zones, format, [&](const QTimeZone &timeZone) -> QString {
        QString day;
        if (format == MenuBarFormat::labelDayTime24) {
            if (const auto suffix = daySuffixIfDifferent(at, timeZone, localTimeZone))
                day = *suffix + u' ';
        }
        return day + timeString(format, at, timeZone);
    });
}

QString guide(const QList<SavedZone> &zones, MenuBarFormat format)
{
    QString widest;
    switch (format) {
    case MenuBarFormat::labelTime24Seconds:
        widest = QStringLiteral("00:00:00");
        break;
    case MenuBarFormat::labelTime12:
        widest = QStringLiteral("00:00p");
        break;
    case MenuBarFormat::labelDayTime24:
        widest = QStringLiteral("Wed 00:00");
        break;
    case MenuBarFormat::labelTime24:
    case MenuBarFormat::timeOnly24:
        widest = QStringLiteral("00:00");
        break;
    }
    return joined(zones, format, [&](const QTimeZone &) -> QString { return widest; });
}

} // namespace MenuBarFormatter
