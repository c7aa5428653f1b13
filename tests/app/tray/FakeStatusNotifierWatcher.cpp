#include "FakeStatusNotifierWatcher.h"

namespace {

const QString serviceName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString objectPath = QStringLiteral("/StatusNotifierWatcher");

} // namespace

FakeStatusNotifierWatcher::FakeStatusNotifierWatcher(const QString &connectionName, QObject *parent)
    : QObject(parent)
    , m_connectionName(connectionName)
    , m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName))
{
    m_bus.registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
}

FakeStatusNotifierWatcher::~FakeStatusNotifierWatcher()
{
    stop();
    m_bus.unregisterObject(objectPath);
    QDBusConnection::disconnectFromBus(m_connectionName);
}

bool FakeStatusNotifierWatcher::start()
{
    m_running = m_bus.registerService(serviceName);
    return m_running;
}

void FakeStatusNotifierWatcher::stop()
{
    if (m_running)
        m_bus.unregisterService(serviceName);
    m_running = false;
}

void FakeStatusNotifierWatcher::RegisterStatusNotifierItem(const QString &service)
{
    m_items.append(service);
    Q_EMIT itemRegistered(service);
}
