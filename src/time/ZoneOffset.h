#pragma once

#include "ZoneOffsetInfo.h"

#include <QDateTime>
#include <QString>
#include <QTimeZone>

namespace ZoneOffset {

ZoneOffsetInfo info(const QTimeZone &zone, const QDateTime &at, const QTimeZone &localTimeZone);

// "local" for 0, otherwise e.g. "+9h", "-0h30m", "+5h45m" (seconds dropped).
QString formatOffsetHours(qint64 seconds);

// The Julian Day Number of a Gregorian date; consecutive dates give
// consecutive numbers, which is all the callers rely on.
qint64 julianDay(int year, int month, int day);

} // namespace ZoneOffset
