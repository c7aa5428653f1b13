#pragma once

#include <QByteArray>
#include <QDBusAbstractAdaptor>
#include <QStringList>

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

private:
    ZoneStore &m_store;
};
