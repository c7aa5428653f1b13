#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"
#include "WorkingHours.h"

#include <QList>
#include <QObject>
#include <QTimer>
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
    // The name a zone is saved under: an old name (a link) becomes the zone
    // it stands for. Names are saved as given when this is not set.
    std::function<QString(const QString &)> canonical = {};
};

// The one owner of the user's list of cities and of the tray line format.
// Every change is written to the preferences at once, as one locked step that
// first takes in what other processes saved, so that no side overwrites the
// other. Changes made outside are taken in as they appear. When saving fails
// the changes stay in memory and are saved again with the next change, a
// change outside, or a retry a little later.
class ZoneStore final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool saveFailed READ saveFailed NOTIFY saveFailedChanged)

public:
    static const QString zonesKey;
    static const QString formatKey;
    static const QString seededKey;
    static const QString workingHoursKey;

    // How long a failed save waits before it is tried again on its own.
    static constexpr int retryIntervalMs = 15000;

    ZoneStore(PreferencesStore &preferences, TimeZoneLookup lookup, QObject *parent = nullptr);
    ~ZoneStore() override;

    const QList<SavedZone> &zones() const { return m_zones; }
    // An equal list is written again but announces nothing.
    void setZones(const QList<SavedZone> &zones);

    MenuBarFormat format() const { return m_format; }
    void setFormat(MenuBarFormat format);

    // Off (nothing) unless the user set a range; a saved value that cannot
    // be read is off too. An equal value is not written again.
    std::optional<WorkingHours> workingHours() const { return m_workingHours; }
    void setWorkingHours(const std::optional<WorkingHours> &hours);

    QList<SavedZone> pinnedZones() const;

    // The zone with this id, if any.
    std::optional<SavedZone> zone(const QUuid &id) const;

    // Whether changes are held in memory because they could not be saved.
    bool saveFailed() const { return m_saveFailed; }

    // The edits below answer whether they changed the list as saved now
    // (including what other processes saved just before).

    // Ignored for an identifier the database does not resolve, for an exact
    // duplicate (same identifier and same untrimmed nickname) and beyond the
    // limits of ZoneLimits.
    bool add(const QString &identifier, const std::optional<QString> &customLabel = std::nullopt,
             bool isPinned = false);
    // Writes the list even when no zone has the id; answers whether one had.
    bool remove(const QUuid &id);
    // The nickname is trimmed; a blank one means none. Ignored for a nickname
    // beyond ZoneLimits.
    bool rename(const QUuid &id, const std::optional<QString> &customLabel);
    bool togglePin(const QUuid &id);
    // Sets the pin flag rather than flipping it, for callers that must not
    // undo a flip made elsewhere in the meantime.
    bool setPinned(const QUuid &id, bool isPinned);
    // Moves the zones at the offsets in front of the zone that stood at the
    // destination (counted before the move), keeping their order.
    void move(const QList<int> &offsets, int destination);
    // Moves the zones with these ids, in list order, in front of the anchor
    // (or to the end without one).
    void moveZones(const QList<QUuid> &ids, const std::optional<QUuid> &before);

Q_SIGNALS:
    void zonesChanged();
    void formatChanged();
    void workingHoursChanged();
    void saveFailedChanged();

private:
    // A change of the list, run on the list as saved; false when it changes
    // nothing and needs no write.
    using ZoneEdit = std::function<bool(QList<SavedZone> &)>;
    enum class Announce { always, ifChanged };

    void load();
    // Reads what is saved into m_saved*; false when the list is there but
    // cannot be read.
    bool readSaved();
    // Saves the pending changes plus this one, on top of what is saved now;
    // `plan` runs first, once what is saved has been read. Answers whether
    // the edit changed the list.
    bool commit(const ZoneEdit &edit, Announce announce,
                const std::function<void()> &plan = nullptr);
    void retry();
    void takeOutsideChanges();
    void show(const QList<SavedZone> &zones, MenuBarFormat format,
              const std::optional<WorkingHours> &hours, bool announceZones);
    void setSaveFailed(bool failed);

    PreferencesStore &m_preferences;
    TimeZoneLookup m_lookup;
    QList<SavedZone> m_zones;
    MenuBarFormat m_format = MenuBarFormat::labelTime24;
    std::optional<WorkingHours> m_workingHours;

    // What the preferences held when last read or written.
    QList<SavedZone> m_savedZones;
    MenuBarFormat m_savedFormat = MenuBarFormat::labelTime24;
    std::optional<WorkingHours> m_savedWorkingHours;
    // Changes not saved yet, replayed on top of what is saved at each attempt.
    QList<ZoneEdit> m_pendingZones;
    std::optional<MenuBarFormat> m_pendingFormat;
    // Set while a change of the working hours (possibly to off) awaits saving.
    std::optional<std::optional<WorkingHours>> m_pendingWorkingHours;
    bool m_pendingSeeded = false;
    bool m_saveFailed = false;
    QTimer m_retry;
};
