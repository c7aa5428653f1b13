#include "StoreZoneEditor.h"

#include "ZoneStore.h"

StoreZoneEditor::StoreZoneEditor(ZoneStore &store)
    : m_store(store)
{}

std::optional<QList<SavedZone>> StoreZoneEditor::zones()
{
    return m_store.zones();
}

std::optional<MenuBarFormat> StoreZoneEditor::format()
{
    return m_store.format();
}

ZoneEditor::Result StoreZoneEditor::add(const QString &identifier,
                                        const std::optional<QString> &nickname, bool pinned)
{
    const qsizetype before = m_store.zones().size();
    m_store.add(identifier, nickname, pinned);
    return m_store.zones().size() > before ? Result::Done : Result::Ignored;
}

ZoneEditor::Result StoreZoneEditor::rename(const QUuid &id, const std::optional<QString> &nickname)
{
    if (!m_store.zone(id))
        return Result::Ignored;
    m_store.rename(id, nickname);
    return Result::Done;
}

ZoneEditor::Result StoreZoneEditor::setPinned(const QUuid &id, bool pinned)
{
    const std::optional<SavedZone> zone = m_store.zone(id);
    if (!zone)
        return Result::Ignored;
    if (zone->isPinned != pinned)
        m_store.togglePin(id);
    return Result::Done;
}

ZoneEditor::Result StoreZoneEditor::remove(const QUuid &id)
{
    if (!m_store.zone(id))
        return Result::Ignored;
    m_store.remove(id);
    return Result::Done;
}

ZoneEditor::Result StoreZoneEditor::moveZones(const QList<QUuid> &ids,
                                              const std::optional<QUuid> &before)
{
    m_store.moveZones(ids, before);
    return Result::Done;
}

ZoneEditor::Result StoreZoneEditor::setFormat(MenuBarFormat format)
{
    m_store.setFormat(format);
    return Result::Done;
}
