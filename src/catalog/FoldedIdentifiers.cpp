#include "FoldedIdentifiers.h"

#include <algorithm>

FoldedIdentifiers::FoldedIdentifiers(const QStringList &identifiers,
                                     const QHash<QString, QString> &links)
    : m_names(identifiers)
{
    QHash<QString, qsizetype> first;
    m_zoneIndex.reserve(identifiers.size() + links.size());
    for (qsizetype i = 0; i < identifiers.size(); ++i) {
        auto known = first.constFind(identifiers[i]);
        if (known == first.cend())
            known = first.insert(identifiers[i], i);
        m_zoneIndex.append(known.value());
    }

    QStringList linkNames = links.keys();
    std::sort(linkNames.begin(), linkNames.end());
    for (const QString &link : std::as_const(linkNames)) {
        const qsizetype zone = first.value(links.value(link), -1);
        if (zone < 0 || first.contains(link))
            continue;
        m_names.append(link);
        m_zoneIndex.append(zone);
    }
    m_folded = FoldedTextTable(m_names);
}
