#pragma once

#include "SettingsPreferencesStore.h"

#include <QByteArray>
#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QPoint>
#include <QStringList>

#include <functional>

class ZoneStore;

// The running Zonara's list on the session bus, so that the command line
// edits through the one store instead of writing under its feet.
//
// Every edit carries the caller's deadline (milliseconds since the epoch):
// an edit that could still be running when the caller stops waiting is
// refused with an error before anything changes, so that a caller never
// reports a timeout for an edit made behind its back. Nicknames and the
// number of cities beyond ZoneLimits are refused with an error too.
class ZoneService final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "io.github.zonara.Zones1")

public:
    static const QString interfaceName;
    // The longest an edit can take once started: the wait for another
    // writer's lock, and a save bounded by the limits.
    static constexpr qint64 longestEditMs = SettingsPreferencesStore::lockTimeoutMs + 5000;

    // Errors are answered on bus, where parent is exported.
    ZoneService(ZoneStore &store, const QDBusConnection &bus, QObject *parent);

    // What the tray shows, kept up to date by the running program.
    void setLine(const QString &line);
    // Opens or closes the panel near a point; without one, nothing opens.
    void setPanelToggle(std::function<void(const QPoint &)> toggle);

public Q_SLOTS:
    // Edits answer true when made, also when held unsaved.
    // The list in its stored form.
    QByteArray Zones() const;
    QString Format() const;
    // Whether the running Zonara holds changes it could not save.
    bool SaveFailed() const;
    bool Add(const QString &identifier, bool hasNickname, const QString &nickname, bool pinned,
             qint64 deadline, const QDBusMessage &call);
    bool Rename(const QString &id, bool hasNickname, const QString &nickname, qint64 deadline,
                const QDBusMessage &call);
    bool SetPinned(const QString &id, bool pinned, qint64 deadline, const QDBusMessage &call);
    bool Remove(const QString &id, qint64 deadline, const QDBusMessage &call);
    bool MoveZones(const QStringList &ids, const QString &before, qint64 deadline,
                   const QDBusMessage &call);
    bool SetFormat(const QString &format, qint64 deadline, const QDBusMessage &call);
    // For panel applets: the tray line (empty while the globe shows), every
    // saved city with its time, one a line, pinned first, and the panel
    // opened near a point on screen or closed, as a click on the tray item.
    QString Line() const;
    QString Cities() const;
    void TogglePanel(int x, int y);

Q_SIGNALS:
    void LineChanged(const QString &line);

private:
    // False, with an error sent back, when the edit must not start.
    bool startsInTime(qint64 deadline, const QDBusMessage &call) const;
    bool withinLimits(const std::optional<QString> &problem, const QDBusMessage &call) const;
    void refuse(const QDBusMessage &call, QDBusError::ErrorType error, const QString &text) const;

    ZoneStore &m_store;
    QDBusConnection m_bus;
    QString m_line;
    std::function<void(const QPoint &)> m_togglePanel;
};
