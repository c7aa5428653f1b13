#pragma once

#include <QHashFunctions>
#include <QString>
#include <QStringView>

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
    // A city found by another of its names: listed under its own name, with
    // the name that was found ahead of the usual subtitle.
    static ZoneSearchResult fromOtherName(const CityEntry &city, QStringView otherName);
    static ZoneSearchResult fromIdentifier(const QString &identifier);
    // A zone found by an old name (a link): the zone itself is what is saved.
    static ZoneSearchResult fromLink(const QString &link, const QString &identifier);

    friend bool operator==(const ZoneSearchResult &a, const ZoneSearchResult &b) = default;
};

size_t qHash(const ZoneSearchResult &result, size_t seed = 0) noexcept;
