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

ZoneEditor::Result StoreZoneEditor::outcome(bool applied) const
{
    if (!applied)
        return Result::Ignored;
    return m_store.saveFailed() ? Result::Unsaved : Result::Done;
}

ZoneEditor::Result StoreZoneEditor::add(const QString &identifier,
                                        const std::optional<QString> &nickname, bool pinned)
{
    return outcome(m_store.add(identifier, nickname, pinned));
}

ZoneEditor::Result StoreZoneEditor::rename(const QUuid &id, const std::optional<QString> &nickname)
{
    return outcome(m_store.rename(id, nickname));
}

ZoneEditor::Result StoreZoneEditor::setPinned(const QUuid &id, bool pinned)
{
    return outcome(m_store.setPinned(id, pinned));
}

ZoneEditor::Result StoreZoneEditor::remove(const QUuid &id)
{
    return outcome(m_store.remove(id));
}

ZoneEditor::Result StoreZoneEditor::moveZones(const QList<QUuid> &ids,
                                              const std::optional<QUuid> &before)
{
    m_store.moveZones(ids, before);
    return outcome(true);
}

ZoneEditor::Result StoreZoneEditor::setFormat(MenuBarFormat format)
{
    m_store.setFormat(format);
    return outcome(true);
}
