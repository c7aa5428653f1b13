#pragma once

#include "FoldedTextTable.h"

#include <QHash>
#include <QList>
#include <QStringList>

// The known time-zone identifiers with their folded forms, built once for the
// fast search, followed by the old names (links) of those zones.
class FoldedIdentifiers final
{
public:
    FoldedIdentifiers() = default;
    // `links` maps an old name to the known identifier it stands for; links
    // to anything else are left out.
    explicit FoldedIdentifiers(const QStringList &identifiers,
                               const QHash<QString, QString> &links = {});

    // The identifiers, then the links in code-point order.
    const QStringList &names() const { return m_names; }
    qsizetype size() const { return m_names.size(); }
    const FoldedTextTable &folded() const { return m_folded; }

    // Where in names() the zone that name `index` stands for first appears:
    // `index` itself for an identifier's first occurrence, an earlier index
    // for a repeat or a link. The search lists each zone once.
    qsizetype zoneIndex(qsizetype index) const { return m_zoneIndex[index]; }

private:
    QStringList m_names;
    FoldedTextTable m_folded;
    QList<qsizetype> m_zoneIndex;
};
