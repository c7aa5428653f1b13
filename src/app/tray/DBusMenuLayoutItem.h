#pragma once

#include <QList>
#include <QMetaType>
#include <QVariantMap>

class QDBusArgument;

// One node of a com.canonical.dbusmenu layout, D-Bus signature (ia{sv}av);
// each child travels as a variant holding another node.
struct DBusMenuLayoutItem
{
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayoutItem> children;
};

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayoutItem &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayoutItem &item);

Q_DECLARE_METATYPE(DBusMenuLayoutItem)
