#pragma once

#include "ZoneStore.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QTimeZone>

#include <optional>

// The system's tz database as the program sees it: only real IANA names
// count as zones, never Qt's "UTC+05:00" pseudo-identifiers nor POSIX rule
// strings such as "EST5" that QTimeZone would also accept.
namespace TimeZoneDatabase {

// The zone of a real IANA name (a zone or a link); nothing for any other text.
std::optional<QTimeZone> resolve(const QString &identifier);
bool resolves(const QString &identifier);

// The system's current zone, read afresh on every call. Honours TZ (with or
// without a leading ':', a name or a path); UTC when nothing else applies.
QTimeZone localZone();

// The IANA name of the system's zone; "UTC" when the system names none.
QString systemZoneId();

// The zones the database defines (links left out, except "UTC" and "GMT"),
// sorted by code point. Built on first use.
const QStringList &knownIdentifiers();

// The other names of known zones, each with the known zone it stands for
// (Asia/Calcutta: Asia/Kolkata; US/Eastern: America/New_York). Names that
// knownIdentifiers() lists itself, such as "UTC", are not among them.
const QHash<QString, QString> &linkTargets();

// The known zone an identifier stands for: a link's target, otherwise the
// identifier unchanged.
QString canonicalIdentifier(const QString &identifier);

TimeZoneLookup lookup();

} // namespace TimeZoneDatabase
