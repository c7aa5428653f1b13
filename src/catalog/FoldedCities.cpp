#include "FoldedCities.h"

namespace {

// Assigns each distinct text a number in order of first appearance.
qsizetype intern(const QString &text, QHash<QString, qsizetype> &numbers, QStringList &distinct)
{
    const auto it = numbers.constFind(text);
    if (it != numbers.cend())
        return it.value();
    distinct.append(text);
    return numbers.insert(text, distinct.size() - 1).value();
}

} // namespace

FoldedCities::FoldedCities(const QList<CityEntry> &cities, const CityOtherNames &otherNames)
    : m_cities(cities)
    , m_otherNames(otherNames)
{
    QStringList names;
    QStringList countries;
    QStringList identifiers;
    QHash<QString, qsizetype> countryLookup;
    names.reserve(cities.size());
    m_countryIndex.reserve(cities.size());
    m_identifierIndex.reserve(cities.size());
    for (const CityEntry &city : cities) {
        names.append(city.name);
        m_countryIndex.append(intern(city.country, countryLookup, countries));
        m_identifierIndex.append(intern(city.identifier, m_identifierLookup, identifiers));
    }
    m_names = FoldedTextTable(names);
    m_countries = FoldedTextTable(countries);
    m_identifiers = FoldedTextTable(identifiers);
    QStringList other;
    other.reserve(otherNames.size());
    for (qsizetype i = 0; i < otherNames.size(); ++i)
        other.append(otherNames.name(i).toString());
    m_foldedOtherNames = FoldedTextTable(other);
}

qsizetype FoldedCities::indexOfIdentifier(const QString &identifier) const
{
    return m_identifierLookup.value(identifier, -1);
}
