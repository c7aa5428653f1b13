#include "DBusMenuItemPropertyNames.h"

#include <QDBusArgument>

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItemPropertyNames &item)
{
    argument.beginStructure();
    argument << item.id << item.names;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItemPropertyNames &item)
{
    argument.beginStructure();
    argument >> item.id >> item.names;
    argument.endStructure();
    return argument;
}
