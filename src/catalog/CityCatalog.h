#pragma once

#include "CityEntry.h"
#include "CityOtherNames.h"

#include <QByteArray>
#include <QList>
#include <QString>

class FoldedCities;

// The city catalogue shipped with the program: a JSON array of objects with
// the string members "name", "identifier" and "country", read once and never
// changed. Anything wrong with the file gives an empty catalogue, silently.
namespace CityCatalog {

// An explicit catalogue path that wins over the installed location, for tests
// and for packagers who keep the file elsewhere.
inline constexpr char fileVariable[] = "ZONARA_CITIES_FILE";

// The file the shared catalogue comes from: $ZONARA_CITIES_FILE when set,
// otherwise share/zonara/cities.json beside the executable's bin directory,
// or beside libexec for the programs installed in libexec/zonara (the
// installed layout, which the build tree mirrors).
QString fileName();

// All cities in file order, read on first use (safe from any thread).
const QList<CityEntry> &shared();

// The other names of shared()'s cities, read with them.
const CityOtherNames &sharedOtherNames();

// shared(), folded for the fast search; built once on first use.
const FoldedCities &sharedFolded();

// The cities of a file; their other names too when `otherNames` is given.
QList<CityEntry> load(const QString &fileName, CityOtherNames *otherNames = nullptr);
QList<CityEntry> decode(const QByteArray &json, CityOtherNames *otherNames = nullptr);

} // namespace CityCatalog
