#include "PosixTimeFormat.h"

#include <array>

namespace {

constexpr std::array<const char *, 7> shortWeekdays{"Mon", "Tue", "Wed", "Thu",
                                                    "Fri", "Sat", "Sun"};
constexpr std::array<const char *, 7> longWeekdays{"Monday", "Tuesday",  "Wednesday", "Thursday",
                                                   "Friday", "Saturday", "Sunday"};

QString number(int value, qsizetype width)
{
    return QString::number(value).rightJustified(width, u'0');
}

} // namespace

namespace PosixTimeFormat {

QString format(const QDateTime &instant, const QTimeZone &zone, QStringView pattern)
{
    if (!instant.isValid() || !zone.isValid())
        return {};
    const QDateTime local = instant.toTimeZone(zone);
    const QTime time = local.time();
    const int weekday = local.date().dayOfWeek(); // 1 = Monday

    QString out;
    qsizetype i = 0;
    while (i < pattern.size()) {
        const QChar c = pattern.at(i);
        if (c == u'\'') {
            const qsizetype close = pattern.indexOf(u'\'', i + 1);
            if (close == i + 1) {
                out += u'\'';
            } else {
                // An unterminated quote runs to the end of the pattern.
                const qsizetype end = close < 0 ? pattern.size() : close;
                out += pattern.mid(i + 1, end - i - 1);
            }
            i = close < 0 ? pattern.size() : close + 1;
            continue;
        }
        qsizetype run = 1;
        while (i + run < pattern.size() && pattern.at(i + run) == c)
            ++run;
        const qsizetype width = qMin<qsizetype>(run, 2);
        switch (c.unicode()) {
        case u'H':
            out += number(time.hour(), width);
            break;
        case u'h':
            out += number(time.hour() % 12 == 0 ? 12 : time.hour() % 12, width);
            break;
        case u'm':
            out += number(time.minute(), width);
            break;
        case u's':
            out += number(time.second(), width);
            break;
        case u'a':
            out += QLatin1StringView(time.hour() < 12 ? "AM" : "PM");
            break;
        case u'E':
            out += QLatin1StringView(run >= 4 ? longWeekdays.at(weekday - 1)
                                              : shortWeekdays.at(weekday - 1));
            break;
        default:
            out += pattern.mid(i, run);
            break;
        }
        i += run;
    }
    return out;
}

} // namespace PosixTimeFormat
