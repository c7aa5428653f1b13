#include "TestBus.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QTest>

namespace TestBus {

QDBusMessage call(const QDBusConnection &bus, const QDBusMessage &message, int timeoutMs)
{
    QDBusPendingCall pending = bus.asyncCall(message, timeoutMs);
    if (!QTest::qWaitFor([&pending] { return pending.isFinished(); }, timeoutMs + 1000))
        return QDBusMessage::createError(QDBusError::Timeout, QStringLiteral("no reply in time"));
    return pending.reply();
}

QDBusMessage call(const QDBusConnection &bus, const QString &service, const QString &path,
                  const QString &interface, const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return call(bus, message);
}

QVariant property(const QDBusConnection &bus, const QString &service, const QString &path,
                  const QString &interface, const QString &name)
{
    const QDBusMessage reply =
        call(bus, service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
             QStringLiteral("Get"), {interface, name});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

QVariantMap allProperties(const QDBusConnection &bus, const QString &service, const QString &path,
                          const QString &interface)
{
    const QDBusMessage reply =
        call(bus, service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
             QStringLiteral("GetAll"), {interface});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return qdbus_cast<QVariantMap>(reply.arguments().constFirst());
}

} // namespace TestBus
