#pragma once

#include "SavedZone.h"
#include "ZoneSearchResult.h"

#include <QList>
#include <QString>

#include <optional>

// What the add-city list offers and how a choice is saved; shared by the add
// view and the command line so that both list and save the same things.
namespace ZoneChoices {

// The six places offered before anything is typed.
QList<ZoneSearchResult> suggestions();

// The suggestions for a blank query, otherwise the search over the shipped
// catalogue and every known time zone.
QList<ZoneSearchResult> results(const QString &query);

// A city whose name differs from its zone's city part (a city in another
// city's zone) is saved with its name as the nickname; others without one.
std::optional<QString> nicknameToSave(const ZoneSearchResult &result);

// Whether choosing the result would add nothing: the same zone with the same
// nickname is already saved.
bool isAlreadyAdded(const ZoneSearchResult &result, const QList<SavedZone> &zones);

} // namespace ZoneChoices
