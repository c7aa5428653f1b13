#include "ZoneSearchResult.h"

#include "CityEntry.h"
#include "SavedZone.h"

ZoneSearchResult ZoneSearchResult::fromCity(const CityEntry &city)
{
    return {city.id(), city.name, city.country % u" \u00B7 " % city.identifier, city.identifier};
}

ZoneSearchResult ZoneSearchResult::fromOtherName(const CityEntry &city, QStringView otherName)
{
    ZoneSearchResult result = fromCity(city);
    result.subtitle = otherName % u" \u00B7 " % result.subtitle;
    return result;
}

ZoneSearchResult ZoneSearchResult::fromIdentifier(const QString &identifier)
{
    // The "iana:" prefix keeps these ids apart from city ids, which always
    // contain two "|".
    return {u"iana:" % identifier, cityPart(identifier), identifier, identifier};
}

ZoneSearchResult ZoneSearchResult::fromLink(const QString &link, const QString &identifier)
{
    ZoneSearchResult result = fromIdentifier(identifier);
    result.subtitle = link % u" \u00B7 " % identifier;
    return result;
}

size_t qHash(const ZoneSearchResult &result, size_t seed) noexcept
{
    QtPrivate::QHashCombine combine;
    seed = combine(seed, result.id);
    seed = combine(seed, result.title);
    seed = combine(seed, result.subtitle);
    seed = combine(seed, result.identifier);
    return seed;
}
