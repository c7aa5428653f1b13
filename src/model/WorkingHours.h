#pragma once

#include <QString>
#include <QStringView>
#include <QTime>

#include <optional>

// The part of the day the user works, to tell the cities where it is day for
// them from those where it is night. An end before the start runs across
// midnight (22:00-06:00 for a night shift); start and end are whole minutes
// and never equal.
struct WorkingHours
{
    QTime start;
    QTime end;

    // Start inclusive, end exclusive.
    bool contains(const QTime &time) const;

    // "09:00-18:00", as saved.
    QString toString() const;
    // "09:00-18:00", "9:00 - 18:00", "22:00–06:00"; nothing for anything else,
    // including a range that starts where it ends.
    static std::optional<WorkingHours> fromString(QStringView text);

    friend bool operator==(const WorkingHours &a, const WorkingHours &b)
    {
        return a.start == b.start && a.end == b.end;
    }
};
