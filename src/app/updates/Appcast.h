#pragma once

#include "AppcastItem.h"

#include <QList>

#include <optional>

// The RSS update feed ("appcast") with Sparkle's extensions.
namespace Appcast {

inline constexpr auto sparkleNamespace = "http://www.andymatuschak.org/xml-namespaces/sparkle";

// Larger feeds, and elements nested deeper, are refused.
inline constexpr qsizetype maximumSize = 4 * 1024 * 1024;
inline constexpr int maximumDepth = 32;
// Releases announced as larger are left out: an unverified download is
// written to disk before its signature can be checked, so the feed must not
// choose how much. Zonara's own releases are a small fraction of this.
inline constexpr qint64 maximumReleaseSize = 256 * 1024 * 1024;

// The feed's usable releases, in feed order, or nothing when the document is
// not well-formed RSS, too large or too deep. Items without a valid version, download address,
// length (up to maximumReleaseSize) or signature are left out; unknown elements are ignored.
std::optional<QList<AppcastItem>> parse(const QByteArray &document);

// The newest of items, or nothing when there is none.
std::optional<AppcastItem> newest(const QList<AppcastItem> &items);

} // namespace Appcast
