#pragma once

#include <QHash>
#include <QString>

// Short codes (at most three characters) that label pinned zones without a
// nickname in the tray line, where space is tight.
namespace ZoneLabel {

// Hand-picked codes, mostly airport or city codes, for well-known zones.
// Exact, case-sensitive keys.
const QHash<QString, QString> &shortCodes();

// The first three user-perceived characters of the city part, upper-cased
// and without spaces; "???" when nothing is left.
QString fallbackCode(const QString &identifier);

QString shortCode(const QString &identifier);

} // namespace ZoneLabel
