#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

// Plays org.kde.StatusNotifierWatcher on a bus connection of its own and
// records every RegisterStatusNotifierItem call.
class FakeStatusNotifierWatcher final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")

public:
    explicit FakeStatusNotifierWatcher(const QString &connectionName, QObject *parent = nullptr);
    ~FakeStatusNotifierWatcher() override;

    // Takes and releases the watcher's well-known name.
    bool start();
    void stop();
    QStringList registeredItems() const { return m_items; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service);

Q_SIGNALS:
    void itemRegistered(const QString &service);

private:
    QString m_connectionName;
    QDBusConnection m_bus;
    QStringList m_items;
    bool m_running = false;
};
