#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"

#include <QList>
#include <QObject>
#include <QUuid>

#include <functional>
#include <optional>

class PreferencesStore;

// What the store needs to know of the time-zone database. The time layer
// supplies the real one; tests may pass their own.
struct TimeZoneLookup
{
    // Whether the database resolves an identifier.
    std::function<bool(const QString &)> resolves;
    // The IANA name of the system's current zone (for seeding the first run).
    std::function<QString()> systemZoneId;
};

// The one owner of the user's list of cities and of the tray line format.
// Every change is written to the preferences at once.
class ZoneStore final : public QObject
{
    Q_OBJECT

public:
    static const QString zonesKey;
    static const QString formatKey;
    static const QString seededKey;

    ZoneStore(PreferencesStore &preferences, TimeZoneLookup lookup, QObject *parent = nullptr);

    const QList<SavedZone> &zones() const { return m_zones; }
    // An equal list is written again but announces nothing.
    void setZones(const QList<SavedZone> &zones);

    MenuBarFormat format() const { return m_format; }
    void setFormat(MenuBarFormat format);

    QList<SavedZone> pinnedZones() const;

    // The zone with this id, if any.
    std::optional<SavedZone> zone(const QUuid &id) const;

    // Ignored for an identifier the database does not resolve and for an
    // exact duplicate (same identifier and same untrimmed nickname).
    void add(const QString &identifier, const std::optional<QString> &customLabel = std::nullopt,
             bool isPinned = false);
    void remove(const QUuid &id);
    // The nickname is trimmed; a blank one means none.
    void rename(const QUuid &id, const std::optional<QString> &customLabel);
    void togglePin(const QUuid &id);
    // Moves the zones at the offsets in front of the zone that stood at the
    // destination (counted before the move), keeping their order.
    void move(const QList<int> &offsets, int destination);
    // Moves the zones with these ids, in list order, in front of the anchor
    // (or to the end without one).
    void moveZones(const QList<QUuid> &ids, const std::optional<QUuid> &before);

Q_SIGNALS:
    void zonesChanged();
    void formatChanged();

private:
    void load();
    void seedIfNeeded();
    void persistZones();
    void persistFormat();
    // Runs an in-place edit: it always announces and always writes.
    void editInPlace(const std::function<void(QList<SavedZone> &)> &edit);

    PreferencesStore &m_preferences;
    TimeZoneLookup m_lookup;
    QList<SavedZone> m_zones;
    MenuBarFormat m_format = MenuBarFormat::labelTime24;
};
