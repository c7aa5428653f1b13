#include "FoldedTextTable.h"

#include "TextFolding.h"

#include <QtAlgorithms>

#include <algorithm>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

// The first p in [from, last) with data[p] == first and data[p + 1] == second,
// or -1; data[last] must be readable. A pair of code units is far rarer than
// either alone, so this leaves few candidates to confirm.
qsizetype findPair(const char16_t *data, qsizetype from, qsizetype last, char16_t first,
                   char16_t second)
{
    qsizetype p = from;
#ifdef __SSE2__
    const __m128i wantFirst = _mm_set1_epi16(short(first));
    const __m128i wantSecond = _mm_set1_epi16(short(second));
    for (; p + 8 <= last; p += 8) {
        const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data + p));
        const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data + p + 1));
        const int mask = _mm_movemask_epi8(
            _mm_and_si128(_mm_cmpeq_epi16(here, wantFirst), _mm_cmpeq_epi16(next, wantSecond)));
        if (mask != 0)
            return p + qCountTrailingZeroBits(uint(mask)) / 2;
    }
#endif
    for (; p < last; ++p) {
        if (data[p] == first && data[p + 1] == second)
            return p;
    }
    return -1;
}

} // namespace

FoldedTextTable::FoldedTextTable(const QStringList &texts)
{
    QStringList folded;
    folded.reserve(texts.size());
    qsizetype total = 0;
    for (const QString &text : texts) {
        folded.append(TextFolding::fold(text));
        total += folded.constLast().size();
    }
    m_buffer.reserve(total);
    m_starts.reserve(texts.size() + 1);
    for (const QString &text : std::as_const(folded)) {
        m_buffer.append(text);
        m_starts.append(m_buffer.size());
    }
    for (const QChar unit : std::as_const(m_buffer)) {
        if (unit.unicode() < m_asciiCounts.size())
            ++m_asciiCounts[unit.unicode()];
        else
            ++m_otherCounts[unit.unicode()];
    }
}

QStringView FoldedTextTable::text(qsizetype index) const
{
    return QStringView(m_buffer).sliced(m_starts[index], m_starts[index + 1] - m_starts[index]);
}

qsizetype FoldedTextTable::frequency(QChar unit) const
{
    if (unit.unicode() < m_asciiCounts.size())
        return m_asciiCounts[unit.unicode()];
    return m_otherCounts.value(unit.unicode(), 0);
}

QList<bool> FoldedTextTable::matches(QStringView foldedNeedle, qsizetype first,
                                     qsizetype count) const
{
    QList<bool> result(count, false);
    const qsizetype needleSize = foldedNeedle.size();
    if (needleSize == 0) {
        result.fill(true);
        return result;
    }

    // Candidates are found by the needle's rarest pair of code units (or its
    // only one) with a vectorised scan and confirmed in place; after a
    // confirmed match the rest of that text is skipped, so no text costs more
    // than one confirmation.
    qsizetype anchor = 0;
    qint64 rarest = -1;
    for (qsizetype i = 0; i + 1 < needleSize; ++i) {
        const qint64 estimate =
            qint64(frequency(foldedNeedle[i])) * qint64(frequency(foldedNeedle[i + 1]));
        if (rarest < 0 || estimate < rarest) {
            rarest = estimate;
            anchor = i;
        }
    }
    const QChar anchorUnit = foldedNeedle[anchor];
    const char16_t pairSecond = needleSize > 1 ? foldedNeedle[anchor + 1].unicode() : u'\0';
    const qsizetype rangeEnd = m_starts[first + count];
    const QStringView buffer = QStringView(m_buffer).first(rangeEnd);
    qsizetype index = first; // the text holding the current candidate
    qsizetype from = m_starts[first];
    while (from + needleSize <= rangeEnd) {
        const qsizetype found = needleSize > 1
                                    ? findPair(buffer.utf16(), from + anchor, rangeEnd - 1,
                                               anchorUnit.unicode(), pairSecond)
                                    : buffer.indexOf(anchorUnit, from + anchor);
        if (found < 0)
            break;
        const qsizetype at = found - anchor; // where the candidate starts
        if (at + needleSize > rangeEnd)
            break;
        while (m_starts[index + 1] <= at)
            ++index;
        const qsizetype start = m_starts[index];
        const qsizetype end = m_starts[index + 1];
        if (at + needleSize > end) {
            // Would run into the next text; no later start in this one fits.
            from = end;
            continue;
        }
        const QStringView candidate = buffer.sliced(at, needleSize);
        if (std::equal(candidate.begin(), candidate.end(), foldedNeedle.begin())) {
            const QStringView own = buffer.sliced(start, end - start);
            if (TextFolding::isCharacterBoundary(own, at - start) &&
                TextFolding::isCharacterBoundary(own, at - start + needleSize)) {
                result[index - first] = true;
                from = end;
                continue;
            }
        }
        from = at + 1;
    }
    return result;
}
