#pragma once

#include "SavedZone.h"

#include <QByteArray>
#include <QList>

#include <optional>

// The stored form of the zone list: a binary property list ("bplist00")
// whose root is an array with one dictionary per zone.
namespace ZoneListCodec {

// Larger stored lists are refused unread (about ten thousand zones).
inline constexpr qsizetype maximumSize = 1024 * 1024;

// The bytes of the list, or nothing when a text cannot be represented
// (an embedded NUL would be cut short by the property-list library).
std::optional<QByteArray> encode(const QList<SavedZone> &zones);

// The whole list, or nothing when anything at all is wrong with the data,
// including nested containers inside the zones' dictionaries.
std::optional<QList<SavedZone>> decode(const QByteArray &bytes);

// True for exactly 8-4-4-4-12 hexadecimal digits of either case.
bool isCanonicalUuidText(QStringView text);

} // namespace ZoneListCodec
