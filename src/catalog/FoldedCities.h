#pragma once

#include "CityEntry.h"
#include "CityOtherNames.h"
#include "FoldedTextTable.h"

#include <QHash>
#include <QList>

// A city list with its searched fields folded once, for the fast search.
// Countries and identifiers repeat a lot, so each distinct text is folded
// and matched once and the cities refer to it by index.
class FoldedCities final
{
public:
    FoldedCities() = default;
    explicit FoldedCities(const QList<CityEntry> &cities, const CityOtherNames &otherNames = {});

    const QList<CityEntry> &cities() const { return m_cities; }
    qsizetype size() const { return m_cities.size(); }

    const FoldedTextTable &names() const { return m_names; }
    const FoldedTextTable &countries() const { return m_countries; }
    const FoldedTextTable &identifiers() const { return m_identifiers; }
    // Text i is otherNames().name(i), folded.
    const FoldedTextTable &foldedOtherNames() const { return m_foldedOtherNames; }
    const CityOtherNames &otherNames() const { return m_otherNames; }

    // Index into countries() / identifiers() of city `city`'s field.
    qsizetype countryIndex(qsizetype city) const { return m_countryIndex[city]; }
    qsizetype identifierIndex(qsizetype city) const { return m_identifierIndex[city]; }

    // Index into identifiers() of this exact (unfolded) identifier, or -1.
    qsizetype indexOfIdentifier(const QString &identifier) const;

private:
    QList<CityEntry> m_cities;
    FoldedTextTable m_names;
    FoldedTextTable m_countries;
    FoldedTextTable m_identifiers;
    CityOtherNames m_otherNames;
    FoldedTextTable m_foldedOtherNames;
    QList<qsizetype> m_countryIndex;
    QList<qsizetype> m_identifierIndex;
    QHash<QString, qsizetype> m_identifierLookup;
};
