#pragma once

#include <QString>

#include <optional>

// Release versions are dotted decimal numbers ("1.10.2"); missing trailing
// parts count as zero, so "1.2" and "1.2.0" are the same release.
namespace UpdateVersion {

bool isValid(const QString &version);

// Negative, zero or positive as left is older than, the same as or newer than
// right; nothing when either is not a dotted decimal version.
std::optional<int> compare(const QString &left, const QString &right);

} // namespace UpdateVersion
