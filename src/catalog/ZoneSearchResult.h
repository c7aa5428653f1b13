#pragma once

#include <QHashFunctions>
#include <QString>

struct CityEntry;

// One row of the add-city search: either a catalogue city or a bare
// time-zone identifier that no listed city covers.
struct ZoneSearchResult
{
    QString id;
    QString title;
    QString subtitle;
    QString identifier;

    static ZoneSearchResult fromCity(const CityEntry &city);
    static ZoneSearchResult fromIdentifier(const QString &identifier);

    friend bool operator==(const ZoneSearchResult &a, const ZoneSearchResult &b) = default;
};

size_t qHash(const ZoneSearchResult &result, size_t seed = 0) noexcept;
