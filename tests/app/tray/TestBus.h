#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QTest>
#include <QVariantMap>

// Calls made as a real client; events are processed while waiting, so that
// objects served by this same thread can answer.
namespace TestBus {

inline QDBusMessage call(const QDBusConnection &bus, const QString &service, const QString &path,
                         const QString &interface, const QString &method,
                         const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return bus.call(message, QDBus::BlockWithGui, 5000);
}

// An invalid value on failure.
inline QVariant property(const QDBusConnection &bus, const QString &service, const QString &path,
                         const QString &interface, const QString &name)
{
    const QDBusMessage reply =
        call(bus, service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
             QStringLiteral("Get"), {interface, name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

// Whether a value arrived as a client receives it, with the given signature.
inline bool hasSignature(const QVariant &value, QLatin1String signature)
{
    return value.metaType() == QMetaType::fromType<QDBusArgument>() &&
           value.value<QDBusArgument>().currentSignature() == signature;
}

// One node of a com.canonical.dbusmenu layout, (ia{sv}av), read by signature
// without the library's own marshalling code; id -1 if the signature is wrong.
struct MenuNode
{
    int id = -1;
    QVariantMap properties;
    QList<MenuNode> children;

    QStringList labels() const
    {
        QStringList result;
        for (const MenuNode &child : children)
            result.append(child.properties.value(QStringLiteral("label")).toString());
        return result;
    }
};

inline MenuNode menuNode(const QVariant &value)
{
    MenuNode node;
    if (!hasSignature(value, QLatin1String("(ia{sv}av)")))
        return node;
    const QDBusArgument argument = value.value<QDBusArgument>();
    argument.beginStructure();
    argument >> node.id >> node.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        node.children.append(menuNode(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return node;
}

} // namespace TestBus
