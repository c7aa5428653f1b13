#pragma once

#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QString>

class QDBusArgument;

// One event of a dbusmenu EventGroup call, D-Bus signature (isvu).
struct DBusMenuEvent
{
    int id = 0;
    QString eventId;
    // Valid by default: QtDBus derives the signature by marshalling a default
    // value, and an empty variant cannot be marshalled.
    QDBusVariant data = QDBusVariant(0);
    uint timestamp = 0;
};

using DBusMenuEventList = QList<DBusMenuEvent>;

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event);

Q_DECLARE_METATYPE(DBusMenuEvent)
