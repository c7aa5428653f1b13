#include "TextFolding.h"

namespace {

bool continuesCharacter(char32_t codePoint)
{
    // Decomposed Hangul syllables are conjoining jamo, which are letters, not
    // marks; the vowel and final consonant still belong to the syllable.
    const bool hangulVowelOrFinal = (codePoint >= 0x1160 && codePoint <= 0x11FF) ||
                                    (codePoint >= 0xD7B0 && codePoint <= 0xD7FF);
    return hangulVowelOrFinal || QChar::isMark(codePoint);
}

} // namespace

namespace TextFolding {

QString fold(const QString &text)
{
    return text.toLower().normalized(QString::NormalizationForm_D);
}

bool isCharacterBoundary(QStringView folded, qsizetype position)
{
    if (position <= 0 || position >= folded.size())
        return true;
    const QChar unit = folded[position];
    if (unit.isLowSurrogate() && folded[position - 1].isHighSurrogate())
        return false;
    char32_t codePoint = unit.unicode();
    if (unit.isHighSurrogate() && position + 1 < folded.size() &&
        folded[position + 1].isLowSurrogate())
        codePoint = QChar::surrogateToUcs4(unit, folded[position + 1]);
    return !continuesCharacter(codePoint);
}

bool contains(QStringView haystack, QStringView needle)
{
    for (qsizetype from = 0;;) {
        const qsizetype at = haystack.indexOf(needle, from);
        if (at < 0)
            return false;
        if (isCharacterBoundary(haystack, at) && isCharacterBoundary(haystack, at + needle.size()))
            return true;
        from = at + 1;
    }
}

} // namespace TextFolding
