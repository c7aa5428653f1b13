#pragma once

#include <QString>

#include <optional>

// Bounds on what the list may hold, so that no edit, from the panel, the
// command line or the bus, can make a start, a tick or a save slow.
namespace ZoneLimits {

inline constexpr qsizetype maximumNicknameLength = 100;
inline constexpr qsizetype maximumZones = 500;

// Why this nickname cannot be kept, or nothing when it can.
std::optional<QString> nicknameProblem(const std::optional<QString> &nickname);
// Why a list of this many zones can take no more, or nothing when it can.
std::optional<QString> countProblem(qsizetype count);

} // namespace ZoneLimits
