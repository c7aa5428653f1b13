#pragma once

#include "ZoneEditor.h"

class ZoneStore;

// Edits straight through a zone store.
class StoreZoneEditor final : public ZoneEditor
{
public:
    explicit StoreZoneEditor(ZoneStore &store);

    std::optional<QList<SavedZone>> zones() override;
    std::optional<MenuBarFormat> format() override;
    Result add(const QString &identifier, const std::optional<QString> &nickname,
               bool pinned) override;
    Result rename(const QUuid &id, const std::optional<QString> &nickname) override;
    Result setPinned(const QUuid &id, bool pinned) override;
    Result remove(const QUuid &id) override;
    Result moveZones(const QList<QUuid> &ids, const std::optional<QUuid> &before) override;
    Result setFormat(MenuBarFormat format) override;

private:
    Result outcome(bool applied) const;

    ZoneStore &m_store;
};
