#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>
#include <QTimeZone>

// A tiny date formatter with fixed English texts, whatever the user's locale.
// Pattern letters follow UTS #35: "H"/"HH" hour 0-23, "h"/"hh" hour 1-12,
// "m"/"mm" minute, "s"/"ss" second, "a" AM/PM, "E" to "EEE" the short
// weekday, "EEEE" the full one. Text in single quotes is literal ("''" is
// a quote); any other character is copied as it is.
namespace PosixTimeFormat {

// The instant as seen in the zone; empty for an invalid instant or zone.
QString format(const QDateTime &instant, const QTimeZone &zone, QStringView pattern);

} // namespace PosixTimeFormat
