#include "ZoneSearch.h"

#include "FoldedCities.h"
#include "FoldedIdentifiers.h"
#include "SavedZone.h"
#include "TextFolding.h"

#include <QSet>

namespace ZoneSearch {

QString needle(const QString &query)
{
    return TextFolding::fold(trimmedText(query));
}

QList<ZoneSearchResult> search(const QString &query, const QList<CityEntry> &cities,
                               const QStringList &knownIdentifiers)
{
    const QString folded = needle(query);
    if (folded.isEmpty())
        return {};
    const auto matches = [&folded](const QString &text) {
        return TextFolding::contains(TextFolding::fold(text), folded);
    };

    QList<ZoneSearchResult> results;
    QSet<QString> listed;
    for (const CityEntry &city : cities) {
        const bool nameMatches = matches(city.name);
        if (!nameMatches && !matches(city.country) && !matches(city.identifier))
            continue;
        const qsizetype before = listed.size();
        listed.insert(city.identifier);
        if (listed.size() == before && !nameMatches)
            continue;
        results.append(ZoneSearchResult::fromCity(city));
    }
    for (const QString &identifier : knownIdentifiers) {
        if (!matches(identifier) || listed.contains(identifier))
            continue;
        listed.insert(identifier);
        results.append(ZoneSearchResult::fromIdentifier(identifier));
    }
    if (results.size() > maximumResults)
        results.resize(maximumResults);
    return results;
}

QList<ZoneSearchResult> search(const QString &query, const FoldedCities &cities,
                               const FoldedIdentifiers &knownIdentifiers)
{
    const QString folded = needle(query);
    if (folded.isEmpty())
        return {};

    // Results only ever get appended, so once the cap is reached nothing
    // later can show: both passes stop there. Names are matched a block at a
    // time for the same reason; a short query fills the list early on.
    constexpr qsizetype blockSize = 2048;
    QList<ZoneSearchResult> results;
    const QList<bool> countryMatches = cities.countries().matches(folded);
    const QList<bool> identifierMatches = cities.identifiers().matches(folded);
    QList<bool> listed(cities.identifiers().size(), false);
    for (qsizetype block = 0; block < cities.size() && results.size() < maximumResults;
         block += blockSize) {
        const qsizetype count = qMin(blockSize, cities.size() - block);
        const QList<bool> nameMatches = cities.names().matches(folded, block, count);
        for (qsizetype i = block; i < block + count && results.size() < maximumResults; ++i) {
            const qsizetype zone = cities.identifierIndex(i);
            if (nameMatches[i - block]) {
                listed[zone] = true;
            } else {
                if (!countryMatches[cities.countryIndex(i)] && !identifierMatches[zone])
                    continue;
                if (listed[zone])
                    continue;
                listed[zone] = true;
            }
            results.append(ZoneSearchResult::fromCity(cities.cities()[i]));
        }
    }

    if (results.size() < maximumResults) {
        const QList<bool> knownMatches = knownIdentifiers.folded().matches(folded);
        for (qsizetype i = 0; i < knownIdentifiers.size() && results.size() < maximumResults; ++i) {
            if (!knownMatches[i] || !knownIdentifiers.isFirstOccurrence(i))
                continue;
            const QString &identifier = knownIdentifiers.identifiers()[i];
            const qsizetype zone = cities.indexOfIdentifier(identifier);
            if (zone >= 0 && listed[zone])
                continue;
            results.append(ZoneSearchResult::fromIdentifier(identifier));
        }
    }
    return results;
}

} // namespace ZoneSearch
