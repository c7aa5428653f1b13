#include "ZoneOffset.h"

namespace {

std::optional<QString> relativeDayText(qint64 days)
{
    if (days == 0)
        return std::nullopt;
    if (days == 1)
        return QStringLiteral("tomorrow");
    if (days == -1)
        return QStringLiteral("yesterday");
    // A negative count brings its own minus sign.
    return QString((days > 0 ? QStringLiteral("+") : QString()) + QString::number(days) + u" days");
}

qint64 julianDayOf(const QDate &date)
{
    return ZoneOffset::julianDay(date.year(), date.month(), date.day());
}

} // namespace

namespace ZoneOffset {

ZoneOffsetInfo info(const QTimeZone &zone, const QDateTime &at, const QTimeZone &localTimeZone)
{
    ZoneOffsetInfo result;
    result.offsetSeconds = qint64(zone.offsetFromUtc(at)) - qint64(localTimeZone.offsetFromUtc(at));
    result.abbreviation = zone.abbreviation(at);
    const qint64 days =
        julianDayOf(at.toTimeZone(zone).date()) - julianDayOf(at.toTimeZone(localTimeZone).date());
    result.relativeDay = relativeDayText(days);
    return result;
}

QString formatOffsetHours(qint64 seconds)
{
    if (seconds == 0)
        return QStringLiteral("local");
    // Unsigned, so that even the most negative value has a magnitude.
    const quint64 magnitude = seconds < 0 ? 0 - quint64(seconds) : quint64(seconds);
    const quint64 hours = magnitude / 3600;
    const quint64 minutes = (magnitude - hours * 3600) / 60;
    QString text = (seconds > 0 ? u"+" : u"-") + QString::number(hours) + u'h';
    if (minutes != 0)
        text += QString::number(minutes).rightJustified(2, u'0') + u'm';
    return text;
}

qint64 julianDay(int year, int month, int day)
{
    // Integer division truncates toward zero, as the formula expects.
    const qint64 a = (14 - qint64(month)) / 12;
    const qint64 y = qint64(year) + 4800 - a;
    const qint64 m = qint64(month) + 12 * a - 3;
    return qint64(day) + (153 * m + 2) / 5 + 365 * y + y / 4 - y / 100 + y / 400 - 32045;
}

} // namespace ZoneOffset
