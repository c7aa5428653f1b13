#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"

#include <QList>
#include <QUuid>

#include <optional>

// The edits the command line makes, whether on the preferences file itself
// or through the running Zonara that owns it.
class ZoneEditor
{
public:
    // Unsaved: made, but held in memory because the preferences could not
    // be saved.
    enum class Result { Done, Ignored, Unreachable, Unsaved };

    virtual ~ZoneEditor() = default;

    virtual std::optional<QList<SavedZone>> zones() = 0;
    virtual std::optional<MenuBarFormat> format() = 0;

    // Ignored when the identifier is unknown or exactly that zone is saved.
    virtual Result add(const QString &identifier, const std::optional<QString> &nickname,
                       bool pinned) = 0;
    virtual Result rename(const QUuid &id, const std::optional<QString> &nickname) = 0;
    virtual Result setPinned(const QUuid &id, bool pinned) = 0;
    virtual Result remove(const QUuid &id) = 0;
    virtual Result moveZones(const QList<QUuid> &ids, const std::optional<QUuid> &before) = 0;
    virtual Result setFormat(MenuBarFormat format) = 0;

protected:
    ZoneEditor() = default;
};
