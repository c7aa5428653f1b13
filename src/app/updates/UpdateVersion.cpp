#include "UpdateVersion.h"

#include <QStringList>

namespace {

std::optional<QStringList> parts(const QString &version)
{
    if (version.isEmpty())
        return std::nullopt;
    QStringList result = version.split(QLatin1Char('.'));
    for (QString &part : result) {
        if (part.isEmpty())
            return std::nullopt;
        for (const QChar c : part) {
            if (c < QLatin1Char('0') || c > QLatin1Char('9'))
                return std::nullopt;
        }
        // Compared as digit strings, so no part is too long for an integer.
        while (part.size() > 1 && part.front() == QLatin1Char('0'))
            part.remove(0, 1);
    }
    return result;
}

int compareParts(const QString &left, const QString &right)
{
    if (left.size() != right.size())
        return left.size() < right.size() ? -1 : 1;
    return left.compare(right);
}

} // namespace

bool UpdateVersion::isValid(const QString &version)
{
    return parts(version).has_value();
}

std::optional<int> UpdateVersion::compare(const QString &left, const QString &right)
{
    const auto leftParts = parts(left);
    const auto rightParts = parts(right);
    if (!leftParts || !rightParts)
        return std::nullopt;
    const qsizetype count = std::max(leftParts->size(), rightParts->size());
    const QString zero = QStringLiteral("0");
    for (qsizetype i = 0; i < count; ++i) {
        const QString &a = i < leftParts->size() ? leftParts->at(i) : zero;
        const QString &b = i < rightParts->size() ? rightParts->at(i) : zero;
        if (const int order = compareParts(a, b); order != 0)
            return order < 0 ? -1 : 1;
    }
    return 0;
}
