#include "ZoneSearch.h"

#include "FoldedCities.h"
#include "FoldedIdentifiers.h"
#include "SavedZone.h"
#include "TextFolding.h"

#include <QSet>
#include <QVarLengthArray>

#include <algorithm>

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
    // later can show: every pass stops there. Names are matched a block at a
    // time for the same reason; a short query fills the list early on.
    constexpr qsizetype blockSize = 2048;
    QList<ZoneSearchResult> results;
    QVarLengthArray<qsizetype, maximumResults> listedCities;
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
            listedCities.append(i);
            results.append(ZoneSearchResult::fromCity(cities.cities()[i]));
        }
    }

    // Cities found only by another name (Cologne, Zurich, Bombay) follow
    // those found by their own, like a name hit: whatever their zone.
    const CityOtherNames &otherNames = cities.otherNames();
    if (results.size() < maximumResults && otherNames.size() > 0) {
        const QList<bool> otherMatches = cities.foldedOtherNames().matches(folded);
        for (qsizetype i = 0; i < otherNames.size() && results.size() < maximumResults; ++i) {
            const qsizetype city = otherNames.city(i);
            if (!otherMatches[i] ||
                std::find(listedCities.cbegin(), listedCities.cend(), city) != listedCities.cend())
                continue;
            listedCities.append(city);
            listed[cities.identifierIndex(city)] = true;
            results.append(
                ZoneSearchResult::fromOtherName(cities.cities()[city], otherNames.name(i)));
        }
    }

    if (results.size() < maximumResults) {
        const QList<bool> knownMatches = knownIdentifiers.folded().matches(folded);
        QList<bool> listedKnown(knownIdentifiers.size(), false);
        for (qsizetype i = 0; i < knownIdentifiers.size() && results.size() < maximumResults; ++i) {
            if (!knownMatches[i])
                continue;
            // A zone is listed once, and under its own name when that matches too.
            const qsizetype zone = knownIdentifiers.zoneIndex(i);
            if ((zone != i && knownMatches[zone]) || listedKnown[zone])
                continue;
            listedKnown[zone] = true;
            const QString &identifier = knownIdentifiers.names()[zone];
            const qsizetype cityZone = cities.indexOfIdentifier(identifier);
            if (cityZone >= 0 && listed[cityZone])
                continue;
            results.append(
                zone == i ? ZoneSearchResult::fromIdentifier(identifier)
                          : ZoneSearchResult::fromLink(knownIdentifiers.names()[i], identifier));
        }
    }
    return results;
}

} // namespace ZoneSearch
