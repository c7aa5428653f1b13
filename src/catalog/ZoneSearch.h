#pragma once

#include "CityEntry.h"
#include "ZoneSearchResult.h"

#include <QList>
#include <QString>
#include <QStringList>

class FoldedCities;
class FoldedIdentifiers;

// The add-city search: catalogue cities whose name, country or identifier
// contain the query, then the known identifiers that contain it and that no
// listed city already covers; at most maximumResults in all.
namespace ZoneSearch {

inline constexpr qsizetype maximumResults = 40;

// Folds every searched text afresh on each call.
QList<ZoneSearchResult> search(const QString &query, const QList<CityEntry> &cities,
                               const QStringList &knownIdentifiers);

// The same results from texts folded once beforehand; this is the one to call
// per keystroke.
QList<ZoneSearchResult> search(const QString &query, const FoldedCities &cities,
                               const FoldedIdentifiers &knownIdentifiers);

// The query as it is matched: trimmed, lower-cased, decomposed. Empty means
// the search lists nothing.
QString needle(const QString &query);

} // namespace ZoneSearch
