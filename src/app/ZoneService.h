#pragma once

#include <QByteArray>
#include <QDBusAbstractAdaptor>
#include <QPoint>
#include <QStringList>

#include <functional>

class ZoneStore;

// The running Zonara's list on the session bus, so that the command line
// edits through the one store instead of writing under its feet.
class ZoneService final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "io.github.zonara.Zones1")

public:
    static const QString interfaceName;

    ZoneService(ZoneStore &store, QObject *parent);

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
    bool Add(const QString &identifier, bool hasNickname, const QString &nickname, bool pinned);
    bool Rename(const QString &id, bool hasNickname, const QString &nickname);
    bool SetPinned(const QString &id, bool pinned);
    bool Remove(const QString &id);
    bool MoveZones(const QStringList &ids, const QString &before);
    bool SetFormat(const QString &format);
    // For panel applets: the tray line (empty while the globe shows), every
    // saved city with its time, one a line, pinned first, and the panel
    // opened near a point on screen or closed, as a click on the tray item.
    QString Line() const;
    QString Cities() const;
    void TogglePanel(int x, int y);

Q_SIGNALS:
    void LineChanged(const QString &line);

private:
    ZoneStore &m_store;
    QString m_line;
    std::function<void(const QPoint &)> m_togglePanel;
};
