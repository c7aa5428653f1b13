#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

// How one zone stands against the local zone at one instant.
struct ZoneOffsetInfo
{
    // The zone's offset from UTC minus the local one; positive when ahead.
    qint64 offsetSeconds = 0;
    // As the tz database names it at that instant; empty when it has none.
    QString abbreviation;
    // "tomorrow", "yesterday", "+2 days", "-2 days", ...; absent on the same date.
    std::optional<QString> relativeDay;

    // The row subtitle, e.g. "JST · +9h, tomorrow".
    QString subtitle() const;

    friend bool operator==(const ZoneOffsetInfo &a, const ZoneOffsetInfo &b) = default;
};
