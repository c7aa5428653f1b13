#pragma once

#include "CityEntry.h"

#include <QList>
#include <QStringList>

// Queries drawn from a catalogue's own texts (pieces of names, countries and
// identifiers, re-cased, re-normalised, padded, stripped of accents) for
// comparing the two search versions on realistic input.
namespace QuerySamples {

QStringList fromCatalog(const QList<CityEntry> &cities, const QStringList &identifiers, int count,
                        quint32 seed);

} // namespace QuerySamples
