#pragma once

#include "SavedZone.h"

#include <QList>
#include <QString>

#include <variant>

// How the command line names a saved city: its position in the list (from
// 1), its id, or a display name that names exactly one city.
namespace ZoneReference {

// The index into the list, or a message saying why the text names no city.
std::variant<qsizetype, QString> resolve(const QString &text, const QList<SavedZone> &zones);

} // namespace ZoneReference
