#pragma once

#include <QString>
#include <QStringList>
#include <QTime>

#include <optional>

// What `zonara at` is asked: a time of day and, optionally, the city whose
// clock shows it, typed in either order ("15:00 Tokyo", "Tokyo 15:00",
// "3pm new york"), in one argument or several.
struct AtQuery
{
    QTime time;
    // As typed, white space collapsed; empty for the computer's own zone.
    QString city;

    // Nothing when neither the start nor the end of the words is a time.
    static std::optional<AtQuery> parse(const QStringList &arguments);
};
