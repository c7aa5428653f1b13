#pragma once

#include <QList>
#include <QMetaType>
#include <QStringList>

class QDBusArgument;

// Property names removed from one dbusmenu item, D-Bus signature (ias).
struct DBusMenuItemPropertyNames
{
    int id = 0;
    QStringList names;
};

using DBusMenuItemPropertyNamesList = QList<DBusMenuItemPropertyNames>;

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItemPropertyNames &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItemPropertyNames &item);

Q_DECLARE_METATYPE(DBusMenuItemPropertyNames)
