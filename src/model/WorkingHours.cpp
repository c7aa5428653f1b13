#include "WorkingHours.h"

#include <QRegularExpression>

bool WorkingHours::contains(const QTime &time) const
{
    if (start <= end)
        return start <= time && time < end;
    return time >= start || time < end;
}

QString WorkingHours::toString() const
{
    return start.toString(u"HH:mm") + u'-' + end.toString(u"HH:mm");
}

std::optional<WorkingHours> WorkingHours::fromString(QStringView text)
{
    // Whatever else a hand-edited file holds is not worth reading.
    if (text.size() > 32)
        return std::nullopt;
    static const QRegularExpression pattern(
        QStringLiteral(R"(^\s*(\d{1,2}):(\d{2})\s*[-\x{2013}]\s*(\d{1,2}):(\d{2})\s*$)"));
    const QRegularExpressionMatch match = pattern.match(text.toString());
    if (!match.hasMatch())
        return std::nullopt;
    const QTime start(match.capturedView(1).toInt(), match.capturedView(2).toInt());
    const QTime end(match.capturedView(3).toInt(), match.capturedView(4).toInt());
    if (!start.isValid() || !end.isValid() || start == end)
        return std::nullopt;
    return WorkingHours{start, end};
}
