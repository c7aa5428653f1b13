#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QTimeZone>

#include <optional>

// The tray line and the per-zone time texts, always in English.
namespace MenuBarFormatter {

// The time of day at the instant in the zone: "21:05", "9:05p", "21:05:07".
QString timeString(MenuBarFormat format, const QDateTime &date, const QTimeZone &timeZone);

// The zone's short weekday ("Tue") when its calendar date differs from the local one.
std::optional<QString> daySuffixIfDifferent(const QDateTime &date, const QTimeZone &zoneTimeZone,
                                            const QTimeZone &localTimeZone);

// The pinned zones, in list order, e.g. "NYC 09:05  LON 14:05". Zones the
// database does not know are left out; empty when nothing is left.
QString string(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &at,
               const QTimeZone &localTimeZone);
// The widest text that line can take in the format, whatever the time: every
// digit "0", the widest weekday, two-digit hours. Hosts reserve its width so
// the panel does not shift as the minutes pass.
QString guide(const QList<SavedZone> &zones, MenuBarFormat format);

} // namespace MenuBarFormatter
