#include "DirectBusSignal.h"

#include <dbus/dbus.h>

#include <memory>

DirectBusSignal::DirectBusSignal(const QString &path, const QString &interface, const QString &name)
    : m_path(path.toUtf8())
    , m_interface(interface.toUtf8())
    , m_name(name.toUtf8())
{}

DirectBusSignal &DirectBusSignal::operator<<(const QString &argument)
{
    m_arguments.append(argument.toUtf8());
    return *this;
}

bool DirectBusSignal::send(const QDBusConnection &bus) const
{
    // libdbus locks the connection itself; QtDBus's thread keeps reading it.
    auto *connection = static_cast<DBusConnection *>(bus.internalPointer());
    if (connection == nullptr || !dbus_connection_get_is_connected(connection))
        return false;
    const std::unique_ptr<DBusMessage, void (*)(DBusMessage *)> message(
        dbus_message_new_signal(m_path.constData(), m_interface.constData(), m_name.constData()),
        dbus_message_unref);
    if (!message)
        return false;
    DBusMessageIter arguments;
    dbus_message_iter_init_append(message.get(), &arguments);
    for (const QByteArray &argument : m_arguments) {
        // A string must be valid UTF-8 without NULs, or libdbus aborts.
        if (argument.contains('\0') || !dbus_validate_utf8(argument.constData(), nullptr))
            return false;
        const char *text = argument.constData();
        if (!dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &text))
            return false;
    }
    // Written at once when the socket takes it, as a tick's few bytes do.
    return dbus_connection_send(connection, message.get(), nullptr);
}
