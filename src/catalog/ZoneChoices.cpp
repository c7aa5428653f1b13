#include "ZoneChoices.h"

#include "CityCatalog.h"
#include "FoldedIdentifiers.h"
#include "TimeZoneDatabase.h"
#include "ZoneSearch.h"

#include <algorithm>

namespace ZoneChoices {

QList<ZoneSearchResult> suggestions()
{
    static const QStringList identifiers{
        QStringLiteral("Asia/Tokyo"),       QStringLiteral("America/Los_Angeles"),
        QStringLiteral("America/New_York"), QStringLiteral("Europe/London"),
        QStringLiteral("Europe/Stockholm"), QStringLiteral("UTC"),
    };
    QList<ZoneSearchResult> results;
    for (const QString &identifier : identifiers)
        results.append({identifier, cityPart(identifier), identifier, identifier});
    return results;
}

QList<ZoneSearchResult> results(const QString &query)
{
    if (trimmedText(query).isEmpty())
        return suggestions();
    static const FoldedIdentifiers known(TimeZoneDatabase::knownIdentifiers(),
                                         TimeZoneDatabase::linkTargets());
    return ZoneSearch::search(query, CityCatalog::sharedFolded(), known);
}

std::optional<QString> nicknameToSave(const ZoneSearchResult &result)
{
    if (result.title == cityPart(result.identifier))
        return std::nullopt;
    return result.title;
}

bool isAlreadyAdded(const ZoneSearchResult &result, const QList<SavedZone> &zones)
{
    const std::optional<QString> nickname = nicknameToSave(result);
    return std::any_of(zones.cbegin(), zones.cend(), [&](const SavedZone &zone) {
        return zone.identifier == result.identifier && zone.customLabel == nickname;
    });
}

} // namespace ZoneChoices
