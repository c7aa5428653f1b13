#include "AtQuery.h"

#include "TimeShift.h"

#include <algorithm>

std::optional<AtQuery> AtQuery::parse(const QStringList &arguments)
{
    const QStringList words = arguments.join(u' ').simplified().split(u' ', Qt::SkipEmptyParts);
    // A time is at most three words ("9 30 pm" is not one, "9:30 p.m." and
    // "3 pm" are); the longest that reads as one wins, at the start first.
    const qsizetype longest = std::min<qsizetype>(3, words.size());
    for (const bool atStart : {true, false}) {
        for (qsizetype count = longest; count >= 1; --count) {
            const QStringList timeWords = atStart ? words.first(count) : words.last(count);
            if (const std::optional<QTime> time = TimeShift::parseTime(timeWords.join(u' '))) {
                const QStringList cityWords =
                    atStart ? words.sliced(count) : words.first(words.size() - count);
                return AtQuery{*time, cityWords.join(u' ')};
            }
        }
    }
    return std::nullopt;
}
