#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

// A stand-in panel host: it owns org.kde.StatusNotifierWatcher on the test's
// private bus and records the items that register, so that Zonara has a tray
// and opens no window of its own.
class FakeStatusNotifierWatcher final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

public:
    bool start(QDBusConnection bus)
    {
        return bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                                  QDBusConnection::ExportAllContents) &&
               bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    }
    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList items() const { return m_items; }
    void clear() { m_items.clear(); }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service) { m_items.append(service); }
    void RegisterStatusNotifierHost(const QString &) {}

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString &service);
    void StatusNotifierHostRegistered();

private:
    QStringList m_items;
};
