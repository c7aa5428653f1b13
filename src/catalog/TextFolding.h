#pragma once

#include <QString>
#include <QStringView>

// The form in which search texts are compared: locale-independent lower case,
// then canonical decomposition, so that canonically equivalent spellings
// compare equal code point by code point.
namespace TextFolding {

QString fold(const QString &text);

// Whether a match may start or end at `position` of a folded text: at either
// end, or before a code point that begins a new character. A combining mark
// (or a Hangul vowel or final consonant left by decomposition) continues the
// character before it, so a match never splits "ã" into "a" and its tilde.
bool isCharacterBoundary(QStringView folded, qsizetype position);

// Whether `needle` occurs in `haystack` (both folded) as whole characters.
bool contains(QStringView haystack, QStringView needle);

} // namespace TextFolding
