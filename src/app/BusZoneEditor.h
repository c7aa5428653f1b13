#pragma once

#include "ZoneEditor.h"

#include <QDBusConnection>
#include <QVariantList>

// Edits through the running Zonara on the session bus.
class BusZoneEditor final : public ZoneEditor
{
public:
    explicit BusZoneEditor(const QDBusConnection &bus);

    // Whether a Zonara is running on the bus.
    static bool isServing(const QDBusConnection &bus);

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
    // Reads answer at once.
    static constexpr int readTimeoutMs = 25000;

    std::optional<QVariant> call(const QString &method, const QVariantList &arguments = {},
                                 int timeoutMs = readTimeoutMs);
    Result edit(const QString &method, const QVariantList &arguments);

    QDBusConnection m_bus;
};
