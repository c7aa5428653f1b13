#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"
#include "WorkingHours.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringView>
#include <QTime>
#include <QTimeZone>

#include <optional>

// Planning across zones: a moment other than now, chosen by shifting or by
// typing a time into one city's clock, and what the list says about it.
namespace TimeShift {

// A typed time of day: "15:00", "9:30", "3pm", "9:30a", "12 AM", "0930".
// Nothing for text that is no time of day.
std::optional<QTime> parseTime(QStringView text);

// The instant at which the zone's clocks show the date and time. A time the
// clocks skip (spring forward) gives the first instant after the gap; a time
// they show twice (fall back) gives the earlier instant.
QDateTime instantAt(const QDate &date, const QTime &time, const QTimeZone &zone);

// How the zone's clocks show a date and time: once, not at all (skipped when
// they spring forward), or twice (when they fall back).
enum class WallTime { once, skipped, repeated };
WallTime wallTime(const QDate &date, const QTime &time, const QTimeZone &zone);

// Whether the zone's clocks show a time within the working hours at the moment.
bool isWorkingTime(const WorkingHours &hours, const QDateTime &moment, const QTimeZone &zone);

// The same zone's clock set to a typed time: on the day the clock shows at
// `shown`, at `time`.
QDateTime instantForTypedTime(const QDateTime &shown, const QTime &time, const QTimeZone &zone);

// `minutes` later (earlier when negative) than `from`, landing on the
// quarter-hour grid every zone's clock shows: a step from 14:07 reaches 14:15
// or 14:00, never 14:22.
QDateTime stepped(const QDateTime &from, int minutes);

// How far the moment is from now, rounded to the minute: "+3 h", "-45 min",
// "+1 h 30 min", "+2 d 4 h"; "now" for less than a minute.
QString distanceText(qint64 seconds);

// The strip over a shifted list: "+3 h · Tue 15:00 in Tokyo", the time in
// the line's format.
QString stripText(const QDateTime &now, const QDateTime &moment, const QString &cityName,
                  const QTimeZone &cityZone, MenuBarFormat format);

// Every city at the moment, for pasting into a message: "Tokyo Tue 15:00 ·
// London 07:00 · New York 02:00", the weekday where a city's date is not the
// local one. Zones the database does not know are left out.
QString copyAllText(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &moment,
                    const QTimeZone &localZone);

struct OffsetChange
{
    QDateTime at;
    int offsetBefore = 0;
    int offsetAfter = 0;

    bool isBackward() const { return offsetAfter < offsetBefore; }
};

// The zone's next change of offset after `from`, if one comes within `days`
// whole days (a change exactly `days` days away counts).
std::optional<OffsetChange> upcomingChange(const QTimeZone &zone, const QDateTime &from,
                                           int days = 7);

// "clocks go back Sun", "clocks go forward Sat": the weekday in that zone.
QString changeNotice(const OffsetChange &change, const QTimeZone &zone);

} // namespace TimeShift
