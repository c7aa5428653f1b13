#pragma once

#include <QHashFunctions>
#include <QString>

// One city of the catalogue.
struct CityEntry
{
    QString name;
    QString identifier;
    QString country;

    // name|identifier|country: two entries that differ only in country are
    // different cities, and search results made from them keep that apart.
    QString id() const;

    friend bool operator==(const CityEntry &a, const CityEntry &b) = default;
};

size_t qHash(const CityEntry &entry, size_t seed = 0) noexcept;
