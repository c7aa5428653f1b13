#pragma once

#include <QList>
#include <QMetaType>
#include <QVariantMap>

class QDBusArgument;

// The properties of one dbusmenu item, D-Bus signature (ia{sv}).
struct DBusMenuItemProperties
{
    int id = 0;
    QVariantMap properties;
};

using DBusMenuItemPropertiesList = QList<DBusMenuItemProperties>;

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItemProperties &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItemProperties &item);

Q_DECLARE_METATYPE(DBusMenuItemProperties)
