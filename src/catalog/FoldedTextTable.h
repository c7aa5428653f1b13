#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <array>

// A list of texts folded once (see TextFolding) and kept end to end in one
// buffer, so that one query scans the whole list in a single sweep instead of
// one search call per text.
class FoldedTextTable final
{
public:
    FoldedTextTable() = default;
    explicit FoldedTextTable(const QStringList &texts);

    qsizetype size() const { return m_starts.size() - 1; }
    QStringView text(qsizetype index) const;

    // For each of the `count` texts from `first` on, whether it contains the
    // folded needle as whole characters: the same answer as
    // TextFolding::contains on that text.
    QList<bool> matches(QStringView foldedNeedle, qsizetype first, qsizetype count) const;
    QList<bool> matches(QStringView foldedNeedle) const { return matches(foldedNeedle, 0, size()); }

private:
    qsizetype frequency(QChar unit) const;

    QString m_buffer;
    // m_starts[i] is where text i begins; the last entry is the buffer's end.
    QList<qsizetype> m_starts{0};
    // How often each code unit occurs, to look for a needle by its rarest one.
    std::array<qsizetype, 128> m_asciiCounts{};
    QHash<char16_t, qsizetype> m_otherCounts;
};
