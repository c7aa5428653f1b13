#include "FoldedIdentifiers.h"

#include <QSet>

FoldedIdentifiers::FoldedIdentifiers(const QStringList &identifiers)
    : m_identifiers(identifiers)
    , m_folded(identifiers)
{
    QSet<QString> seen;
    m_firstOccurrence.reserve(identifiers.size());
    for (const QString &identifier : identifiers) {
        const qsizetype before = seen.size();
        seen.insert(identifier);
        m_firstOccurrence.append(seen.size() != before);
    }
}
