#include "ZoneStore.h"

#include "PreferencesStore.h"
#include "ZoneListCodec.h"

#include <QSet>

#include <algorithm>

const QString ZoneStore::zonesKey = QStringLiteral("zonara.zones");
const QString ZoneStore::formatKey = QStringLiteral("zonara.format");
const QString ZoneStore::seededKey = QStringLiteral("zonara.seeded");

ZoneStore::ZoneStore(PreferencesStore &preferences, TimeZoneLookup lookup, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_lookup(std::move(lookup))
{
    load();
}

void ZoneStore::setZones(const QList<SavedZone> &zones)
{
    if (zones == m_zones) {
        m_zones = zones;
        persistZones();
        return;
    }
    m_zones = zones;
    persistZones();
    Q_EMIT zonesChanged();
}

void ZoneStore::setFormat(MenuBarFormat format)
{
    const bool changed = format != m_format;
    m_format = format;
    persistFormat();
    if (changed)
        Q_EMIT formatChanged();
}

QList<SavedZone> ZoneStore::pinnedZones() const
{
    QList<SavedZone> pinned;
    std::copy_if(m_zones.cbegin(), m_zones.cend(), std::back_inserter(pinned),
                 [](const SavedZone &zone) { return zone.isPinned; });
    return pinned;
}

std::optional<SavedZone> ZoneStore::zone(const QUuid &id) const
{
    for (const SavedZone &zone : m_zones) {
        if (zone.id == id)
            return zone;
    }
    return std::nullopt;
}

void ZoneStore::add(const QString &identifier, const std::optional<QString> &customLabel,
                    bool isPinned)
{
    if (!m_lookup.resolves || !m_lookup.resolves(identifier))
        return;
    const bool duplicate = std::any_of(m_zones.cbegin(), m_zones.cend(), [&](const SavedZone &z) {
        return z.identifier == identifier && z.customLabel == customLabel;
    });
    if (duplicate)
        return;
    editInPlace([&](QList<SavedZone> &zones) {
        zones.append(SavedZone{QUuid::createUuid(), identifier, customLabel, isPinned});
    });
}

void ZoneStore::remove(const QUuid &id)
{
    editInPlace([&](QList<SavedZone> &zones) {
        zones.removeIf([&](const SavedZone &zone) { return zone.id == id; });
    });
}

void ZoneStore::rename(const QUuid &id, const std::optional<QString> &customLabel)
{
    const auto found = std::find_if(m_zones.cbegin(), m_zones.cend(),
                                    [&](const SavedZone &zone) { return zone.id == id; });
    if (found == m_zones.cend())
        return;
    const qsizetype index = found - m_zones.cbegin();
    std::optional<QString> label;
    if (customLabel) {
        const QString trimmed = trimmedText(*customLabel);
        if (!trimmed.isEmpty())
            label = trimmed;
    }
    editInPlace([&](QList<SavedZone> &zones) { zones[index].customLabel = label; });
}

void ZoneStore::togglePin(const QUuid &id)
{
    const auto found = std::find_if(m_zones.cbegin(), m_zones.cend(),
                                    [&](const SavedZone &zone) { return zone.id == id; });
    if (found == m_zones.cend())
        return;
    const qsizetype index = found - m_zones.cbegin();
    editInPlace([&](QList<SavedZone> &zones) { zones[index].isPinned = !zones[index].isPinned; });
}

void ZoneStore::move(const QList<int> &offsets, int destination)
{
    editInPlace([&](QList<SavedZone> &zones) {
        QList<int> sorted = offsets;
        std::sort(sorted.begin(), sorted.end());
        sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
        sorted.removeIf([&](int offset) { return offset < 0 || offset >= zones.size(); });
        const int target = std::clamp(destination, 0, int(zones.size()));

        QList<SavedZone> moving;
        for (int offset : sorted)
            moving.append(zones.at(offset));
        for (auto it = sorted.crbegin(); it != sorted.crend(); ++it)
            zones.removeAt(*it);
        const auto below = std::count_if(sorted.cbegin(), sorted.cend(),
                                         [&](int offset) { return offset < target; });
        qsizetype at = target - below;
        for (const SavedZone &zone : moving)
            zones.insert(at++, zone);
    });
}

void ZoneStore::moveZones(const QList<QUuid> &ids, const std::optional<QUuid> &before)
{
    const QSet<QUuid> moving(ids.cbegin(), ids.cend());
    if (moving.isEmpty())
        return;
    if (before) {
        if (moving.contains(*before) || !zone(*before))
            return;
    }

    QList<SavedZone> moved;
    QList<SavedZone> remaining;
    for (const SavedZone &zone : m_zones)
        (moving.contains(zone.id) ? moved : remaining).append(zone);
    if (moved.isEmpty())
        return;

    qsizetype index = remaining.size();
    if (before) {
        const auto anchor = std::find_if(remaining.cbegin(), remaining.cend(),
                                         [&](const SavedZone &zone) { return zone.id == *before; });
        index = anchor - remaining.cbegin();
    }
    QList<SavedZone> result = remaining.first(index);
    result.append(moved);
    result.append(remaining.sliced(index));
    if (result != m_zones)
        setZones(result);
}

void ZoneStore::load()
{
    if (const std::optional<QByteArray> bytes = m_preferences.readBytes(zonesKey)) {
        if (std::optional<QList<SavedZone>> zones = ZoneListCodec::decode(*bytes))
            setZones(*zones);
    }
    if (const std::optional<QString> text = m_preferences.readText(formatKey)) {
        if (const std::optional<MenuBarFormat> format = MenuBarFormats::fromRawValue(*text))
            setFormat(*format);
    }
    if (!m_preferences.readBool(seededKey)) {
        seedIfNeeded();
        m_preferences.writeBool(seededKey, true);
    }
}

void ZoneStore::seedIfNeeded()
{
    if (!m_zones.isEmpty())
        return;
    QString identifier = m_lookup.systemZoneId ? m_lookup.systemZoneId() : QString();
    if (identifier.isEmpty())
        identifier = QStringLiteral("UTC");
    setZones({SavedZone{QUuid::createUuid(), identifier, std::nullopt, false}});
}

void ZoneStore::persistZones()
{
    if (const std::optional<QByteArray> bytes = ZoneListCodec::encode(m_zones))
        m_preferences.writeBytes(zonesKey, *bytes);
}

void ZoneStore::persistFormat()
{
    m_preferences.writeText(formatKey, MenuBarFormats::rawValue(m_format));
}

void ZoneStore::editInPlace(const std::function<void(QList<SavedZone> &)> &edit)
{
    edit(m_zones);
    persistZones();
    Q_EMIT zonesChanged();
}
