#include "BusSignalRecorder.h"

#include <QDBusConnectionInterface>

BusSignalRecorder::BusSignalRecorder(const QDBusConnection &bus, const QString &path,
                                     const QString &interface, const QString &name, QObject *parent)
    : QObject(parent)
{
    QDBusConnection connection = bus;
    m_connected =
        connection.connect(QString(), path, interface, name, this, SLOT(record(QDBusMessage)));
    // A round trip to the daemon, so that the match rule is in force on return.
    connection.interface()->isServiceRegistered(QStringLiteral("org.freedesktop.DBus"));
}

void BusSignalRecorder::record(const QDBusMessage &message)
{
    m_messages.append(message);
    Q_EMIT received();
}
