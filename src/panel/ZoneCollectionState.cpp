#include "ZoneCollectionState.h"

#include "TimeShift.h"
#include "ZoneStore.h"

#include <algorithm>

ZoneCollectionState::ZoneCollectionState(ZoneStore &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{}

bool ZoneCollectionState::isHighlighted(const QUuid &id) const
{
    return m_hoveredId == id || m_selectedId == id;
}

bool ZoneCollectionState::canReorder() const
{
    return !m_editingId && !m_removingZone;
}

bool ZoneCollectionState::isRenaming(const QUuid &id) const
{
    return m_editingId == id;
}

bool ZoneCollectionState::isConfirmingRemoval(const QUuid &id) const
{
    return m_removingZone && m_removingZone->id == id;
}

void ZoneCollectionState::hoverEntered(const QUuid &id)
{
    setHoveredId(id);
}

void ZoneCollectionState::hoverLeft(const QUuid &id)
{
    if (m_hoveredId == id)
        setHoveredId(std::nullopt);
}

void ZoneCollectionState::hoverCleared()
{
    setHoveredId(std::nullopt);
}

void ZoneCollectionState::setSelectedId(const std::optional<QUuid> &id)
{
    if (m_selectedId == id)
        return;
    m_selectedId = id;
    Q_EMIT selectedIdChanged();
}

void ZoneCollectionState::setDraftName(const QString &draftName)
{
    if (m_draftName == draftName)
        return;
    m_draftName = draftName;
    Q_EMIT draftNameChanged();
}

void ZoneCollectionState::beginRename(const SavedZone &zone)
{
    if (m_editingId == zone.id)
        return;
    finishCurrentRename();
    setRemovingZone(std::nullopt);
    setDraftName(zone.displayName());
    setEditingId(zone.id);
}

void ZoneCollectionState::finishCurrentRename()
{
    if (!m_editingId)
        return;
    if (const std::optional<SavedZone> zone = m_store.zone(*m_editingId))
        saveRename(*zone);
}

void ZoneCollectionState::saveRename(const SavedZone &zone)
{
    if (m_editingId != zone.id)
        return;
    const QString draft = trimmedText(m_draftName);
    std::optional<QString> nickname;
    if (draft != cityPart(zone.identifier))
        nickname = draft;
    // Cleared first: the store's announcement redraws a list with no rename open.
    setEditingId(std::nullopt);
    setDraftName(QString());
    m_store.rename(zone.id, nickname);
}

void ZoneCollectionState::cancelRename()
{
    setEditingId(std::nullopt);
    setDraftName(QString());
}

void ZoneCollectionState::move(const SavedZone &zone, int step)
{
    const QList<SavedZone> &zones = m_store.zones();
    const auto found = std::find_if(zones.cbegin(), zones.cend(),
                                    [&zone](const SavedZone &z) { return z.id == zone.id; });
    if (found == zones.cend())
        return;
    const int index = int(found - zones.cbegin());
    if (index + step < 0 || index + step >= zones.size())
        return;
    m_store.move({index}, step < 1 ? index - 1 : index + 2);
    setSelectedId(zone.id);
}

void ZoneCollectionState::moveDragged(const QList<int> &offsets, int destination)
{
    const QList<SavedZone> &zones = m_store.zones();
    QList<int> sorted = offsets;
    std::sort(sorted.begin(), sorted.end());
    QList<QUuid> ids;
    for (const int offset : sorted) {
        if (offset >= 0 && offset < zones.size())
            ids.append(zones.at(offset).id);
    }
    std::optional<QUuid> anchor;
    if (destination >= 0 && destination < zones.size())
        anchor = zones.at(destination).id;
    m_store.moveZones(ids, anchor);
    setSelectedId(ids.isEmpty() ? std::nullopt : std::optional<QUuid>(ids.constFirst()));
}

void ZoneCollectionState::openRemoval(const SavedZone &zone)
{
    cancelRename();
    setRemovingZone(zone);
}

void ZoneCollectionState::cancelRemoval()
{
    setRemovingZone(std::nullopt);
}

void ZoneCollectionState::confirmRemoval()
{
    if (!m_removingZone)
        return;
    const QUuid id = m_removingZone->id;
    setRemovingZone(std::nullopt);
    m_store.remove(id);
}

void ZoneCollectionState::shiftBy(const QDateTime &now, int minutes, const QUuid &anchor)
{
    shiftTo(TimeShift::stepped(shownMoment(now), minutes), anchor);
}

void ZoneCollectionState::shiftTo(const QDateTime &moment, const QUuid &anchor)
{
    if (m_shiftedMoment == moment && m_shiftAnchorId == anchor)
        return;
    m_shiftedMoment = moment;
    m_shiftAnchorId = anchor;
    Q_EMIT shiftedMomentChanged();
}

void ZoneCollectionState::backToNow()
{
    if (!m_shiftedMoment)
        return;
    m_shiftedMoment.reset();
    m_shiftAnchorId.reset();
    Q_EMIT shiftedMomentChanged();
}

void ZoneCollectionState::leave()
{
    finishCurrentRename();
    setRemovingZone(std::nullopt);
    backToNow();
}

void ZoneCollectionState::setHoveredId(const std::optional<QUuid> &id)
{
    if (m_hoveredId == id)
        return;
    m_hoveredId = id;
    Q_EMIT hoveredIdChanged();
}

void ZoneCollectionState::setEditingId(const std::optional<QUuid> &id)
{
    if (m_editingId == id)
        return;
    m_editingId = id;
    Q_EMIT editingIdChanged();
}

void ZoneCollectionState::setRemovingZone(const std::optional<SavedZone> &zone)
{
    if (m_removingZone == zone)
        return;
    m_removingZone = zone;
    Q_EMIT removingZoneChanged();
}
