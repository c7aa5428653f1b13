#include "TimeZoneDatabase.h"

#include "ZoneInfoIndex.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <cstdlib>

namespace {

QString zoneInfoDirectory()
{
    const QString dir = qEnvironmentVariable("TZDIR");
    return dir.isEmpty() ? QStringLiteral("/usr/share/zoneinfo") : dir;
}

const ZoneInfoIndex &index()
{
    static const ZoneInfoIndex instance = ZoneInfoIndex::read(zoneInfoDirectory());
    return instance;
}

// The same zones under other leap-second handling count as the zones.
QString withoutLeapTree(QString name)
{
    for (const QLatin1StringView prefix :
         {QLatin1StringView("posix/"), QLatin1StringView("right/")}) {
        if (name.startsWith(prefix))
            name = name.mid(prefix.size());
    }
    return name;
}

// A named zone that keeps the same time as a POSIX rule ("JST-9",
// "EST5EDT,M3.2.0,M11.1.0") over the next two years: Etc/GMT-9 style for a
// fixed whole hour, otherwise the first zone by name.
std::optional<QString> zoneKeepingTimeOf(const QTimeZone &rule)
{
    QList<QDateTime> instants;
    const QDate today = QDate::currentDate();
    for (int half = 0; half < 48; ++half) {
        const QDate day = today.addMonths(half / 2).addDays(half % 2 ? 15 : 0);
        instants.append(QDateTime(day, QTime(12, 0), Qt::UTC));
    }
    const auto keepsTime = [&](const QString &id) {
        const std::optional<QTimeZone> zone = TimeZoneDatabase::resolve(id);
        return zone && std::all_of(instants.cbegin(), instants.cend(), [&](const QDateTime &at) {
                   return zone->offsetFromUtc(at) == rule.offsetFromUtc(at);
               });
    };
    const int offset = rule.offsetFromUtc(instants.constFirst());
    if (offset % 3600 == 0) {
        const int hours = -offset / 3600;
        const QString fixed = hours == 0 ? QStringLiteral("Etc/UTC")
                                         : QStringLiteral("Etc/GMT%1%2")
                                               .arg(QChar(hours > 0 ? u'+' : u'-'))
                                               .arg(std::abs(hours));
        if (keepsTime(fixed))
            return fixed;
    }
    const QStringList &known = TimeZoneDatabase::knownIdentifiers();
    const auto found = std::find_if(known.cbegin(), known.cend(), keepsTime);
    if (found == known.cend())
        return std::nullopt;
    return *found;
}

// The zone name a TZif path stands for when it lies in the database's tree.
QString nameForPath(const QString &path)
{
    if (path.isEmpty())
        return {};
    const QString root = QDir::cleanPath(zoneInfoDirectory()) + u'/';
    QString name;
    const QString cleaned = QDir::cleanPath(path);
    if (cleaned.startsWith(root)) {
        name = cleaned.mid(root.size());
    } else {
        // The tree itself may be reached through a symlink (/usr/share/zoneinfo
        // is one on some systems), so compare the real paths as well.
        const QString realRoot = QFileInfo(root).canonicalFilePath() + u'/';
        const QString realPath = QFileInfo(path).canonicalFilePath();
        if (realRoot.size() > 1 && realPath.startsWith(realRoot))
            name = realPath.mid(realRoot.size());
    }
    return withoutLeapTree(name);
}

// TZ without the ':' that POSIX allows in front of an implementation's own form.
std::optional<QString> tzVariable()
{
    if (!qEnvironmentVariableIsSet("TZ"))
        return std::nullopt;
    QString value = qEnvironmentVariable("TZ");
    if (value.startsWith(u':'))
        value.remove(0, 1);
    return value;
}

std::optional<QString> namedSystemZone()
{
    QString id = QString::fromUtf8(QTimeZone::systemTimeZoneId());
    if (id.startsWith(u':'))
        id.remove(0, 1);
    if (id.startsWith(u'/'))
        id = nameForPath(id);
    if (TimeZoneDatabase::resolves(id))
        return id;
    const QString target = QFileInfo(QStringLiteral("/etc/localtime")).symLinkTarget();
    id = nameForPath(target);
    if (TimeZoneDatabase::resolves(id))
        return id;
    return std::nullopt;
}

} // namespace

namespace TimeZoneDatabase {

std::optional<QTimeZone> resolve(const QString &identifier)
{
    // Qt keeps only a small cache of its own and reads the TZif file again
    // for every zone beyond it; a tick over many cities would do so for each.
    // Only names in the index are kept, so the cache is bounded by the
    // database itself.
    static QHash<QString, std::optional<QTimeZone>> resolved;
    if (identifier.isEmpty() || !index().contains(identifier))
        return std::nullopt;
    if (const auto found = resolved.constFind(identifier); found != resolved.cend())
        return *found;
    QTimeZone zone(identifier.toUtf8());
    std::optional<QTimeZone> result;
    if (zone.isValid())
        result = zone;
    resolved.insert(identifier, result);
    return result;
}

bool resolves(const QString &identifier)
{
    return resolve(identifier).has_value();
}

QTimeZone localZone()
{
    if (const std::optional<QString> tz = tzVariable()) {
        // Like the C library: an empty or unreadable TZ means UTC, and a
        // path names the TZif file to use.
        if (tz->startsWith(u'/')) {
            if (QDir::cleanPath(*tz) != u"/etc/localtime") {
                if (const auto zone = resolve(nameForPath(*tz)))
                    return *zone;
                return QTimeZone::utc();
            }
        } else {
            if (const auto zone = resolve(withoutLeapTree(*tz)))
                return *zone;
            // A POSIX rule such as "JST-9" is what the C library runs on,
            // but Qt reads "UTC+05:00" as its own pseudo-zone with the
            // opposite sign, so that form is not taken from it.
            const bool qtOffsetForm = tz->startsWith(u"UTC+") || tz->startsWith(u"UTC-");
            const QTimeZone rule(tz->toUtf8());
            if (!qtOffsetForm && rule.isValid())
                return rule;
            return QTimeZone::utc();
        }
    }
    if (const std::optional<QString> id = namedSystemZone()) {
        if (const auto zone = resolve(*id))
            return *zone;
    }
    const QTimeZone system = QTimeZone::systemTimeZone();
    return system.isValid() ? system : QTimeZone::utc();
}

QString systemZoneId()
{
    // The zone the tray line counts as local, so that the first city agrees
    // with it.
    const QTimeZone local = localZone();
    const QString id = QString::fromUtf8(local.id());
    if (resolves(id))
        return id;
    if (local.isValid() && local != QTimeZone::utc())
        return zoneKeepingTimeOf(local).value_or(QStringLiteral("UTC"));
    return namedSystemZone().value_or(QStringLiteral("UTC"));
}

const QStringList &knownIdentifiers()
{
    static const QStringList identifiers = [] {
        QStringList names;
        for (const QString &zone : index().zones) {
            // "Factory" is a placeholder zone, not a place.
            if (zone != u"Factory" && resolves(zone))
                names.append(zone);
        }
        // Links are left out as old spellings of listed zones, but these two
        // are what people type when they look for universal time.
        for (const QString &link : {QStringLiteral("UTC"), QStringLiteral("GMT")}) {
            if (!names.contains(link) && resolves(link))
                names.append(link);
        }
        std::sort(names.begin(), names.end());
        return names;
    }();
    return identifiers;
}

const QHash<QString, QString> &linkTargets()
{
    static const QHash<QString, QString> targets = [] {
        const QStringList &known = knownIdentifiers();
        const auto isKnown = [&known](const QString &name) {
            return std::binary_search(known.cbegin(), known.cend(), name);
        };
        QHash<QString, QString> found;
        for (auto it = index().links.cbegin(); it != index().links.cend(); ++it) {
            if (isKnown(it.key()) || !resolves(it.key()))
                continue;
            // Links may point at links; a few hops settle any real database.
            QString target = it.value();
            for (int hop = 0; hop < 8 && !isKnown(target); ++hop)
                target = index().links.value(target);
            if (isKnown(target))
                found.insert(it.key(), target);
        }
        return found;
    }();
    return targets;
}

QString canonicalIdentifier(const QString &identifier)
{
    return linkTargets().value(identifier, identifier);
}

TimeZoneLookup lookup()
{
    return TimeZoneLookup{&resolves, &systemZoneId, &canonicalIdentifier};
}

} // namespace TimeZoneDatabase
