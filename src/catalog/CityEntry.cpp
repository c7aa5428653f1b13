#include "CityEntry.h"

QString CityEntry::id() const
{
    return name % u'|' % identifier % u'|' % country;
}

size_t qHash(const CityEntry &entry, size_t seed) noexcept
{
    QtPrivate::QHashCombine combine;
    seed = combine(seed, entry.name);
    seed = combine(seed, entry.identifier);
    seed = combine(seed, entry.country);
    return seed;
}
