#pragma once

#include <QDBusConnection>
#include <QString>
#include <QStringList>

// Sends a signal on the calling thread, straight onto the bus's socket.
// QtDBus hands every message to its own thread first, which costs a second
// wake-up of this process for each tick's announcement.
class DirectBusSignal final
{
public:
    DirectBusSignal(const QString &path, const QString &interface, const QString &name);

    DirectBusSignal &operator<<(const QString &argument);

    // False when the connection is not one of libdbus's (nothing was sent).
    bool send(const QDBusConnection &bus) const;

private:
    QByteArray m_path;
    QByteArray m_interface;
    QByteArray m_name;
    QList<QByteArray> m_arguments;
};
