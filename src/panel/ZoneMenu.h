#pragma once

#include "SavedZone.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QUuid>

#include <optional>

// The context menu of a zone card: which items, in which order, and which
// of them can be chosen.
class ZoneMenu final
{
public:
    enum class Action {
        rename,
        useCityName,
        togglePin,
        copyTime,
        copyAll,
        setTime,
        moveUp,
        moveDown,
        remove
    };

    struct Item
    {
        // Absent for a separator.
        std::optional<Action> action;
        QString title;
        // Name of one of our symbols; empty for none.
        QString symbol;
        bool isEnabled = true;
        bool isDestructive = false;

        friend bool operator==(const Item &, const Item &) = default;
    };

    ZoneMenu() = delete;

    // "Set time…" only where the list can show another moment than now.
    static QList<Item> items(const QList<SavedZone> &zones, const SavedZone &zone,
                             bool canShiftTime = false);

    // The zone a menu or a double-click concerns: the first zone, in list
    // order, whose id is among `ids`.
    static std::optional<SavedZone> target(const QList<SavedZone> &zones, const QSet<QUuid> &ids);
};
