#include "ZonaraClient.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QProcess>

namespace {

const QString serviceName = QStringLiteral("io.github.zonara.Zonara");
const QString objectPath = QStringLiteral("/io/github/zonara/Zonara");
const QString zonesInterface = QStringLiteral("io.github.zonara.Zones1");

QDBusMessage zonesCall(const QString &method)
{
    return QDBusMessage::createMethodCall(serviceName, objectPath, zonesInterface, method);
}

} // namespace

ZonaraClient::ZonaraClient(QObject *parent)
    : QObject(parent)
    , m_bus(QDBusConnection::sessionBus())
    , m_watcher(serviceName, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                setRunning(!owner.isEmpty());
            });
    // Follows whichever process owns the name, across restarts.
    m_bus.connect(serviceName, objectPath, zonesInterface, QStringLiteral("LineChanged"), this,
                  SLOT(lineArrived(QString)));
    if (m_bus.interface() && m_bus.interface()->isServiceRegistered(serviceName))
        setRunning(true);
}

void ZonaraClient::setRunning(bool running)
{
    const bool changed = running != m_running;
    m_running = running;
    if (running) {
        // Also for a new owner: its line may differ from the last one's.
        readLine();
        refreshCities();
    } else {
        setLine(QString());
        setCities(QString());
    }
    if (changed)
        Q_EMIT runningChanged();
}

void ZonaraClient::lineArrived(const QString &line)
{
    setLine(line);
    // The times beside it have moved on too.
    refreshCities();
}

void ZonaraClient::setLine(const QString &line)
{
    if (line == m_line)
        return;
    m_line = line;
    Q_EMIT lineChanged();
}

void ZonaraClient::setCities(const QString &cities)
{
    if (cities == m_cities)
        return;
    m_cities = cities;
    Q_EMIT citiesChanged();
}

void ZonaraClient::readLine()
{
    QDBusMessage call = zonesCall(QStringLiteral("Line"));
    // Only a running Zonara answers; reading never starts one.
    call.setAutoStartService(false);
    auto *pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *w) {
        const QDBusPendingReply<QString> reply = *w;
        if (!reply.isError())
            setLine(reply.value());
        w->deleteLater();
    });
}

void ZonaraClient::refreshCities()
{
    if (!m_running)
        return;
    QDBusMessage call = zonesCall(QStringLiteral("Cities"));
    call.setAutoStartService(false);
    auto *pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *w) {
        const QDBusPendingReply<QString> reply = *w;
        if (!reply.isError())
            setCities(reply.value());
        w->deleteLater();
    });
}

void ZonaraClient::togglePanel(int x, int y)
{
    QDBusMessage call = zonesCall(QStringLiteral("TogglePanel"));
    call << x << y;
    // When Zonara is not running, the bus starts it from its service file and
    // hands it this call, so the panel opens near the applet all the same.
    auto *pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [](QDBusPendingCallWatcher *w) {
        // Without the service file (a build that was never installed), the
        // program from the PATH; it comes up with its tray item.
        if (w->isError() && w->error().type() == QDBusError::ServiceUnknown)
            QProcess::startDetached(QStringLiteral("zonara"), QStringList());
        w->deleteLater();
    });
}
