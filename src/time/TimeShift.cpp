#include "TimeShift.h"

#include "MenuBarFormatter.h"
#include "PosixTimeFormat.h"
#include "TimeZoneDatabase.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cstdlib>

namespace TimeShift {

std::optional<QTime> parseTime(QStringView text)
{
    // hours, optional minutes (after ':' or '.', or the last two of four
    // digits), optional a/am/p/pm.
    static const QRegularExpression pattern(
        QStringLiteral(R"(^\s*(\d{1,2})(?:[:.h]?(\d{2}))?\s*([ap])?\.?\s*(?:m\.?)?\s*$)"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text.toString());
    if (!match.hasMatch())
        return std::nullopt;
    int hour = match.capturedView(1).toInt();
    const int minute = match.capturedView(2).isEmpty() ? 0 : match.capturedView(2).toInt();
    const QStringView meridiem = match.capturedView(3);
    if (!meridiem.isEmpty()) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        const bool pm = meridiem.compare(u"p", Qt::CaseInsensitive) == 0;
        hour = hour % 12 + (pm ? 12 : 0);
    }
    if (hour > 23 || minute > 59)
        return std::nullopt;
    return QTime(hour, minute);
}

QDateTime instantAt(const QDate &date, const QTime &time, const QTimeZone &zone)
{
    // The wall time read as if it were UTC; each offset the zone has near it
    // gives one candidate, valid when the zone really has that offset then.
    const qint64 wall = QDateTime(date, time, QTimeZone::utc()).toSecsSinceEpoch();
    const auto offsetAt = [&zone](qint64 seconds) {
        return zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::utc()));
    };
    const int before = offsetAt(wall - 86400);
    const int after = offsetAt(wall + 86400);
    std::optional<qint64> earliest;
    for (const int offset : {before, after, offsetAt(wall)}) {
        const qint64 candidate = wall - offset;
        if (offsetAt(candidate) == offset && (!earliest || candidate < *earliest))
            earliest = candidate;
    }
    if (earliest)
        return QDateTime::fromSecsSinceEpoch(*earliest, QTimeZone::utc());
    // Skipped: the clocks jump over it at the transition, the first valid instant.
    const QTimeZone::OffsetData next = zone.nextTransition(
        QDateTime::fromSecsSinceEpoch(wall - std::max(before, after) - 1, QTimeZone::utc()));
    return next.atUtc.toTimeZone(QTimeZone::utc());
}

WallTime wallTime(const QDate &date, const QTime &time, const QTimeZone &zone)
{
    const QDateTime first = instantAt(date, time, zone);
    const QDateTime shown = first.toTimeZone(zone);
    if (shown.date() != date || shown.time() != time)
        return WallTime::skipped;
    // Shown again later: the wall time read with the offset the zone has a
    // day after, when that is a different instant the zone agrees with.
    const qint64 wall = QDateTime(date, time, QTimeZone::utc()).toSecsSinceEpoch();
    const int later =
        zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(wall + 86400, QTimeZone::utc()));
    const QDateTime second = QDateTime::fromSecsSinceEpoch(wall - later, QTimeZone::utc());
    return second != first && zone.offsetFromUtc(second) == later ? WallTime::repeated
                                                                  : WallTime::once;
}

bool isWorkingTime(const WorkingHours &hours, const QDateTime &moment, const QTimeZone &zone)
{
    return hours.contains(moment.toTimeZone(zone).time());
}

QDateTime instantForTypedTime(const QDateTime &shown, const QTime &time, const QTimeZone &zone)
{
    return instantAt(shown.toTimeZone(zone).date(), time, zone);
}

QDateTime stepped(const QDateTime &from, int minutes)
{
    constexpr qint64 grid = 15 * 60;
    qint64 target = from.toSecsSinceEpoch() + qint64(minutes) * 60;
    const qint64 offGrid = ((target % grid) + grid) % grid;
    // Off the grid: the grid line between `from` and the full step.
    if (offGrid != 0)
        target += minutes > 0 ? -offGrid : grid - offGrid;
    return QDateTime::fromSecsSinceEpoch(target, QTimeZone::utc());
}

QString distanceText(qint64 seconds)
{
    const qint64 minutes = (std::llabs(seconds) + 30) / 60;
    if (minutes == 0)
        return QStringLiteral("now");
    const qint64 days = minutes / 1440;
    const qint64 hours = minutes % 1440 / 60;
    const qint64 rest = minutes % 60;
    QStringList parts;
    if (days > 0)
        parts.append(QStringLiteral("%1 d").arg(days));
    if (hours > 0)
        parts.append(QStringLiteral("%1 h").arg(hours));
    // Minutes matter under a day; beyond, the hour is the planning unit.
    if (rest > 0 && days == 0)
        parts.append(QStringLiteral("%1 min").arg(rest));
    return (seconds < 0 ? u'-' : u'+') + parts.join(u' ');
}

QString stripText(const QDateTime &now, const QDateTime &moment, const QString &cityName,
                  const QTimeZone &cityZone, MenuBarFormat format)
{
    return distanceText(now.secsTo(moment)) + QStringLiteral(" · ") +
           PosixTimeFormat::format(moment, cityZone, u"EEE") + u' ' +
           MenuBarFormatter::timeString(format, moment, cityZone) + QStringLiteral(" in ") +
           cityName;
}

QString copyAllText(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &moment,
                    const QTimeZone &localZone)
{
    QStringList parts;
    for (const SavedZone &zone : zones) {
        const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
        if (!timeZone)
            continue;
        QString part = zone.displayName() + u' ';
        if (const auto day = MenuBarFormatter::daySuffixIfDifferent(moment, *timeZone, localZone))
            part += *day + u' ';
        parts.append(part + MenuBarFormatter::timeString(format, moment, *timeZone));
    }
    return parts.join(QStringLiteral(" · "));
}

std::optional<OffsetChange> upcomingChange(const QTimeZone &zone, const QDateTime &from, int days)
{
    if (!zone.hasTransitions())
        return std::nullopt;
    const QTimeZone::OffsetData next = zone.nextTransition(from);
    if (!next.atUtc.isValid() || from.secsTo(next.atUtc) > qint64(days) * 86400)
        return std::nullopt;
    const int before = zone.offsetFromUtc(next.atUtc.addSecs(-1));
    if (before == next.offsetFromUtc)
        return std::nullopt; // a new name or rule, not a new time
    return OffsetChange{next.atUtc.toTimeZone(QTimeZone::utc()), before, next.offsetFromUtc};
}

QString changeNotice(const OffsetChange &change, const QTimeZone &zone)
{
    return (change.isBackward() ? QStringLiteral("clocks go back ")
                                : QStringLiteral("clocks go forward ")) +
           PosixTimeFormat::format(change.at, zone, u"EEE");
}

} // namespace TimeShift
