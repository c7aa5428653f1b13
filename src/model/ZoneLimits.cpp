#include "ZoneLimits.h"

namespace ZoneLimits {

std::optional<QString> nicknameProblem(const std::optional<QString> &nickname)
{
    if (!nickname || nickname->size() <= maximumNicknameLength)
        return std::nullopt;
    return QStringLiteral("a nickname can have at most %1 characters").arg(maximumNicknameLength);
}

std::optional<QString> countProblem(qsizetype count)
{
    if (count < maximumZones)
        return std::nullopt;
    return QStringLiteral("Zonara keeps at most %1 cities; remove one first").arg(maximumZones);
}

} // namespace ZoneLimits
