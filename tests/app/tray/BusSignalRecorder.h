#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QObject>

// Records one D-Bus signal as seen by a client connection, from any sender.
class BusSignalRecorder final : public QObject
{
    Q_OBJECT

public:
    BusSignalRecorder(const QDBusConnection &bus, const QString &path, const QString &interface,
                      const QString &name, QObject *parent = nullptr);

    bool isConnected() const { return m_connected; }
    int count() const { return int(m_messages.size()); }
    const QList<QDBusMessage> &messages() const { return m_messages; }

public Q_SLOTS:
    void record(const QDBusMessage &message);

Q_SIGNALS:
    void received();

private:
    QList<QDBusMessage> m_messages;
    bool m_connected = false;
};
