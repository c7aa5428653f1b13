#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>
#include <QVariantMap>

// Calls made as a real client: never blocking, so that objects served by
// this same thread can answer while the test waits.
namespace TestBus {

QDBusMessage call(const QDBusConnection &bus, const QDBusMessage &message, int timeoutMs = 5000);
QDBusMessage call(const QDBusConnection &bus, const QString &service, const QString &path,
                  const QString &interface, const QString &method,
                  const QVariantList &arguments = {});
// org.freedesktop.DBus.Properties; an invalid value or an empty map on failure.
QVariant property(const QDBusConnection &bus, const QString &service, const QString &path,
                  const QString &interface, const QString &name);
QVariantMap allProperties(const QDBusConnection &bus, const QString &service, const QString &path,
                          const QString &interface);

} // namespace TestBus
