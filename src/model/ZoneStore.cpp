#include "ZoneStore.h"

#include "PreferencesStore.h"
#include "ZoneLimits.h"
#include "ZoneListCodec.h"

#include <QSet>

#include <algorithm>
#include <memory>

const QString ZoneStore::zonesKey = QStringLiteral("zonara.zones");
const QString ZoneStore::formatKey = QStringLiteral("zonara.format");
const QString ZoneStore::seededKey = QStringLiteral("zonara.seeded");
const QString ZoneStore::workingHoursKey = QStringLiteral("zonara.workingHours");

namespace {

qsizetype indexOf(const QList<SavedZone> &zones, const QUuid &id)
{
    const auto found = std::find_if(zones.cbegin(), zones.cend(),
                                    [&](const SavedZone &zone) { return zone.id == id; });
    return found == zones.cend() ? -1 : found - zones.cbegin();
}

// The zones with these ids, in list order, in front of the anchor (or at the
// end without one).
QList<SavedZone> movedZones(const QList<SavedZone> &zones, const QSet<QUuid> &moving,
                            const std::optional<QUuid> &before)
{
    QList<SavedZone> moved;
    QList<SavedZone> remaining;
    for (const SavedZone &zone : zones)
        (moving.contains(zone.id) ? moved : remaining).append(zone);
    const qsizetype anchor = before ? indexOf(remaining, *before) : -1;
    const qsizetype index = anchor < 0 ? remaining.size() : anchor;
    QList<SavedZone> result = remaining.first(index);
    result.append(moved);
    result.append(remaining.sliced(index));
    return result;
}

} // namespace

ZoneStore::ZoneStore(PreferencesStore &preferences, TimeZoneLookup lookup, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_lookup(std::move(lookup))
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(retryIntervalMs);
    connect(&m_retry, &QTimer::timeout, this, &ZoneStore::retry);
    load();
    m_preferences.setOutsideChangeHandler([this] { takeOutsideChanges(); });
}

ZoneStore::~ZoneStore()
{
    m_preferences.setOutsideChangeHandler(nullptr);
}

void ZoneStore::setZones(const QList<SavedZone> &zones)
{
    commit(
        [zones](QList<SavedZone> &list) {
            list = zones;
            return true;
        },
        Announce::ifChanged);
}

void ZoneStore::setFormat(MenuBarFormat format)
{
    m_pendingFormat = format;
    commit(nullptr, Announce::ifChanged);
}

void ZoneStore::setWorkingHours(const std::optional<WorkingHours> &hours)
{
    // The time fields set it on every step of an edit; most steps change nothing.
    if (hours == m_workingHours && !m_pendingWorkingHours)
        return;
    m_pendingWorkingHours = hours;
    commit(nullptr, Announce::ifChanged);
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
    const qsizetype index = indexOf(m_zones, id);
    return index < 0 ? std::nullopt : std::optional(m_zones.at(index));
}

bool ZoneStore::add(const QString &identifier, const std::optional<QString> &customLabel,
                    bool isPinned)
{
    if (ZoneLimits::nicknameProblem(customLabel) || !m_lookup.resolves ||
        !m_lookup.resolves(identifier))
        return false;
    const QString saved = m_lookup.canonical ? m_lookup.canonical(identifier) : identifier;
    const SavedZone added{QUuid::createUuid(), saved, customLabel, isPinned};
    return commit(
        [added](QList<SavedZone> &zones) {
            const bool duplicate =
                std::any_of(zones.cbegin(), zones.cend(), [&](const SavedZone &zone) {
                    return zone.identifier == added.identifier &&
                           zone.customLabel == added.customLabel;
                });
            if (duplicate || ZoneLimits::countProblem(zones.size()))
                return false;
            zones.append(added);
            return true;
        },
        Announce::always);
}

bool ZoneStore::remove(const QUuid &id)
{
    const auto matched = std::make_shared<bool>(false);
    commit(
        [id, matched](QList<SavedZone> &zones) {
            *matched = zones.removeIf([&](const SavedZone &zone) { return zone.id == id; }) > 0;
            return true;
        },
        Announce::always);
    return *matched;
}

bool ZoneStore::rename(const QUuid &id, const std::optional<QString> &customLabel)
{
    std::optional<QString> label;
    if (customLabel) {
        const QString trimmed = trimmedText(*customLabel);
        if (!trimmed.isEmpty())
            label = trimmed;
    }
    if (ZoneLimits::nicknameProblem(label))
        return false;
    return commit(
        [id, label](QList<SavedZone> &zones) {
            const qsizetype index = indexOf(zones, id);
            if (index >= 0)
                zones[index].customLabel = label;
            return index >= 0;
        },
        Announce::always);
}

bool ZoneStore::togglePin(const QUuid &id)
{
    return commit(
        [id](QList<SavedZone> &zones) {
            const qsizetype index = indexOf(zones, id);
            if (index >= 0)
                zones[index].isPinned = !zones[index].isPinned;
            return index >= 0;
        },
        Announce::always);
}

bool ZoneStore::setPinned(const QUuid &id, bool isPinned)
{
    return commit(
        [id, isPinned](QList<SavedZone> &zones) {
            const qsizetype index = indexOf(zones, id);
            if (index >= 0)
                zones[index].isPinned = isPinned;
            return index >= 0;
        },
        Announce::always);
}

void ZoneStore::move(const QList<int> &offsets, int destination)
{
    commit(
        [offsets, destination](QList<SavedZone> &zones) {
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
            return true;
        },
        Announce::always);
}

void ZoneStore::moveZones(const QList<QUuid> &ids, const std::optional<QUuid> &before)
{
    const QSet<QUuid> moving(ids.cbegin(), ids.cend());
    if (moving.isEmpty())
        return;
    if (before && (moving.contains(*before) || !zone(*before)))
        return;
    if (movedZones(m_zones, moving, before) == m_zones)
        return;
    // Ids keep their meaning when another process changed the list meanwhile.
    commit(
        [moving, before](QList<SavedZone> &zones) {
            if (before && indexOf(zones, *before) < 0)
                return false;
            QList<SavedZone> result = movedZones(zones, moving, before);
            if (result == zones)
                return false;
            zones = std::move(result);
            return true;
        },
        Announce::ifChanged);
}

void ZoneStore::load()
{
    commit(nullptr, Announce::ifChanged, [this] {
        // A readable list and a known format are written back, as assigned.
        const bool listReadable = readSaved();
        if (listReadable && m_preferences.readBytes(zonesKey))
            m_pendingZones.append([](QList<SavedZone> &) { return true; });
        const std::optional<QString> text = m_preferences.readText(formatKey);
        if (text && MenuBarFormats::fromRawValue(*text))
            m_pendingFormat = m_savedFormat;
        if (m_preferences.readBool(seededKey))
            return;
        // The first run: one zone for the system's own, unless a readable
        // list is there already. Unreadable bytes are replaced (and kept aside).
        m_pendingSeeded = true;
        QString identifier = m_lookup.systemZoneId ? m_lookup.systemZoneId() : QString();
        if (identifier.isEmpty())
            identifier = QStringLiteral("UTC");
        const SavedZone seed{QUuid::createUuid(), identifier, std::nullopt, false};
        if (m_savedZones.isEmpty()) {
            m_pendingZones.append([seed](QList<SavedZone> &zones) {
                if (!zones.isEmpty())
                    return false;
                zones = {seed};
                return true;
            });
        }
    });
}

bool ZoneStore::readSaved()
{
    if (const std::optional<QString> text = m_preferences.readText(formatKey)) {
        if (const std::optional<MenuBarFormat> format = MenuBarFormats::fromRawValue(*text))
            m_savedFormat = *format;
    }
    const std::optional<QString> hours = m_preferences.readText(workingHoursKey);
    m_savedWorkingHours = hours ? WorkingHours::fromString(*hours) : std::nullopt;
    const std::optional<QByteArray> bytes = m_preferences.readBytes(zonesKey);
    if (!bytes)
        return true;
    std::optional<QList<SavedZone>> zones = ZoneListCodec::decode(*bytes);
    if (!zones)
        return false;
    m_savedZones = std::move(*zones);
    return true;
}

bool ZoneStore::commit(const ZoneEdit &edit, Announce announce, const std::function<void()> &plan)
{
    bool applied = false;
    QList<SavedZone> zones;
    MenuBarFormat format = m_format;
    std::optional<WorkingHours> hours = m_workingHours;
    const bool saved = m_preferences.edit([&] {
        const bool listReadable = readSaved();
        if (plan)
            plan();
        zones = m_savedZones;
        m_pendingZones.removeIf([&](const ZoneEdit &pending) { return !pending(zones); });
        if (edit && edit(zones)) {
            applied = true;
            m_pendingZones.append(edit);
        }
        format = m_pendingFormat.value_or(m_savedFormat);
        if (!m_pendingZones.isEmpty()) {
            // A list that cannot be encoded is kept in memory only.
            if (const std::optional<QByteArray> bytes = ZoneListCodec::encode(zones)) {
                if (!listReadable)
                    m_preferences.keepCopyBeforeWriting();
                m_preferences.writeBytes(zonesKey, *bytes);
            }
        }
        if (m_pendingFormat)
            m_preferences.writeText(formatKey, MenuBarFormats::rawValue(*m_pendingFormat));
        hours = m_pendingWorkingHours.value_or(m_savedWorkingHours);
        if (m_pendingWorkingHours) {
            m_preferences.writeText(workingHoursKey,
                                    hours ? hours->toString() : QStringLiteral("off"));
        }
        if (m_pendingSeeded)
            m_preferences.writeBool(seededKey, true);
    });
    if (saved) {
        m_savedZones = zones;
        m_savedFormat = format;
        m_pendingZones.clear();
        m_pendingFormat.reset();
        m_savedWorkingHours = hours;
        m_pendingWorkingHours.reset();
        m_pendingSeeded = false;
    }
    setSaveFailed(!saved);
    show(zones, format, hours, applied && announce == Announce::always);
    return applied;
}

void ZoneStore::retry()
{
    commit(nullptr, Announce::ifChanged);
}

void ZoneStore::takeOutsideChanges()
{
    // Changes waiting to be saved go on top of what was saved outside.
    if (m_saveFailed) {
        retry();
        return;
    }
    readSaved();
    show(m_savedZones, m_savedFormat, m_savedWorkingHours, false);
}

void ZoneStore::show(const QList<SavedZone> &zones, MenuBarFormat format,
                     const std::optional<WorkingHours> &hours, bool announceZones)
{
    const bool zonesDiffer = zones != m_zones;
    const bool formatDiffers = format != m_format;
    const bool hoursDiffer = hours != m_workingHours;
    // Changed in place where the length allows, so that a caller walking the
    // list while it edits never walks freed memory; never shared otherwise.
    if (zones.size() == m_zones.size()) {
        for (qsizetype i = 0; i < zones.size(); ++i) {
            if (m_zones.at(i) != zones.at(i))
                m_zones[i] = zones.at(i);
        }
    } else {
        m_zones = zones;
        m_zones.detach();
    }
    m_format = format;
    m_workingHours = hours;
    if (zonesDiffer || announceZones)
        Q_EMIT zonesChanged();
    if (formatDiffers)
        Q_EMIT formatChanged();
    if (hoursDiffer)
        Q_EMIT workingHoursChanged();
}

void ZoneStore::setSaveFailed(bool failed)
{
    if (failed)
        m_retry.start();
    else
        m_retry.stop();
    if (failed == m_saveFailed)
        return;
    m_saveFailed = failed;
    Q_EMIT saveFailedChanged();
}
