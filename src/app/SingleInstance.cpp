#include "SingleInstance.h"

#include "ApplicationAdaptor.h"
#include "ZonaraBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>

#include <unistd.h>

using ZonaraBus::objectPath;
using ZonaraBus::serviceName;

namespace {

constexpr int forwardTimeoutMs = 2000;
const QByteArray activateMessage = "activate\n";
const QByteArray settingsMessage = "settings\n";
const QByteArray panelMessage = "panel\n";

} // namespace

SingleInstance::SingleInstance(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{}

SingleInstance::~SingleInstance()
{
    if (m_ownsName) {
        m_bus.unregisterObject(objectPath);
        m_bus.interface()->unregisterService(serviceName);
    }
}

bool SingleInstance::claim()
{
    if (!m_bus.isConnected())
        return claimLocalSocket();

    auto *exported = new QObject(this);
    new ApplicationAdaptor(*this, exported);
    // Adaptors added later (the zone service) are exported with it.
    if (!m_bus.registerObject(objectPath, exported, QDBusConnection::ExportAdaptors)) {
        delete exported;
        return false;
    }
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        m_bus.interface()->registerService(serviceName, QDBusConnectionInterface::DontQueueService,
                                           QDBusConnectionInterface::DontAllowReplacement);
    m_ownsName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!m_ownsName) {
        m_bus.unregisterObject(objectPath);
        delete exported;
        return false;
    }
    m_exported = exported;
    return true;
}

bool SingleInstance::forward(Request request)
{
    if (!m_bus.isConnected())
        return forwardToLocalSocket(request);

    const QString interface = QStringLiteral("org.freedesktop.Application");
    QDBusMessage call;
    if (request != Request::reopen) {
        call = QDBusMessage::createMethodCall(serviceName, objectPath, interface,
                                              QStringLiteral("ActivateAction"));
        call << (request == Request::settings ? QStringLiteral("settings")
                                              : QStringLiteral("panel"))
             << QVariantList() << QVariantMap();
    } else {
        call = QDBusMessage::createMethodCall(serviceName, objectPath, interface,
                                              QStringLiteral("Activate"));
        call << QVariantMap();
    }
    const QDBusMessage reply = m_bus.call(call, QDBus::Block, forwardTimeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage;
}

void SingleInstance::requestActivate()
{
    Q_EMIT reopenRequested();
}

void SingleInstance::requestSettings()
{
    Q_EMIT settingsRequested();
}

void SingleInstance::requestPanel()
{
    Q_EMIT panelRequested();
}

QString SingleInstance::socketName() const
{
    // The runtime directory is private to the user; /tmp is the fallback,
    // with the socket itself made user-only.
    QString directory = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (directory.isEmpty())
        directory = QDir::tempPath();
    return QDir(directory).filePath(QStringLiteral("zonara-%1.socket").arg(::getuid()));
}

bool SingleInstance::claimLocalSocket()
{
    QLocalSocket probe;
    probe.connectToServer(socketName());
    if (probe.waitForConnected(forwardTimeoutMs))
        return false;

    QLocalServer::removeServer(socketName()); // left behind by a crashed run
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(socketName())) {
        delete m_server;
        m_server = nullptr;
        return false;
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                while (socket->canReadLine()) {
                    const QByteArray line = socket->readLine();
                    if (line == settingsMessage)
                        requestSettings();
                    else if (line == panelMessage)
                        requestPanel();
                    else if (line == activateMessage)
                        requestActivate();
                }
            });
        }
    });
    return true;
}

bool SingleInstance::forwardToLocalSocket(Request request)
{
    QLocalSocket socket;
    socket.connectToServer(socketName());
    if (!socket.waitForConnected(forwardTimeoutMs))
        return false;
    socket.write(request == Request::settings ? settingsMessage
                 : request == Request::panel  ? panelMessage
                                              : activateMessage);
    const bool written = socket.waitForBytesWritten(forwardTimeoutMs);
    socket.disconnectFromServer();
    return written;
}
