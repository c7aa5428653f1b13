#include "FoldedTextTable.h"

#include "TextFolding.h"

#include <algorithm>

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

    // Candidates are found by the needle's rarest code unit (a vectorised
    // scan) and confirmed in place; after a confirmed match the rest of that
    // text is skipped, so no text costs more than one confirmation.
    qsizetype anchor = 0;
    for (qsizetype i = 1; i < needleSize; ++i) {
        if (frequency(foldedNeedle[i]) < frequency(foldedNeedle[anchor]))
            anchor = i;
    }
    const QChar anchorUnit = foldedNeedle[anchor];
    const qsizetype rangeEnd = m_starts[first + count];
    const QStringView buffer = QStringView(m_buffer).first(rangeEnd);
    qsizetype index = first; // the text holding the current candidate
    qsizetype from = m_starts[first];
    while (from + needleSize <= rangeEnd) {
        const qsizetype found = buffer.indexOf(anchorUnit, from + anchor);
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
