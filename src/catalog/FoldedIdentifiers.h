#pragma once

#include "FoldedTextTable.h"

#include <QList>
#include <QStringList>

// The known time-zone identifiers with their folded forms, built once for the
// fast search.
class FoldedIdentifiers final
{
public:
    FoldedIdentifiers() = default;
    explicit FoldedIdentifiers(const QStringList &identifiers);

    const QStringList &identifiers() const { return m_identifiers; }
    qsizetype size() const { return m_identifiers.size(); }
    const FoldedTextTable &folded() const { return m_folded; }

    // False for a repeat of an identifier listed earlier; the search never
    // lists the same identifier twice.
    bool isFirstOccurrence(qsizetype index) const { return m_firstOccurrence[index]; }

private:
    QStringList m_identifiers;
    FoldedTextTable m_folded;
    QList<bool> m_firstOccurrence;
};
