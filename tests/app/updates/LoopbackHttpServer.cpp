#include "LoopbackHttpServer.h"

#include <QTcpSocket>

LoopbackHttpServer::LoopbackHttpServer(QObject *parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &LoopbackHttpServer::onNewConnection);
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("cannot listen on the loopback address");
}

LoopbackHttpServer::~LoopbackHttpServer()
{
    for (const QPointer<QTcpSocket> &socket : std::as_const(m_stalled)) {
        if (socket)
            socket->abort();
    }
}

QUrl LoopbackHttpServer::url(const QString &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path));
}

void LoopbackHttpServer::serve(const QString &path, const Response &response)
{
    m_responses.insert(path, response);
}

QUrl LoopbackHttpServer::refusingUrl(const QString &path)
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    const quint16 port = probe.serverPort();
    probe.close();
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port).arg(path));
}

void LoopbackHttpServer::onNewConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        socket->setParent(this);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void LoopbackHttpServer::onReadyRead(QTcpSocket *socket)
{
    QByteArray request = socket->property("request").toByteArray() + socket->readAll();
    socket->setProperty("request", request);
    if (!request.contains("\r\n\r\n") || socket->property("answered").toBool())
        return;
    socket->setProperty("answered", true);
    ++m_requestCount;

    const QList<QByteArray> requestLine = request.left(request.indexOf("\r\n")).split(' ');
    const QString path =
        requestLine.size() > 1 ? QString::fromLatin1(requestLine.at(1)) : QString();
    const Response response =
        m_responses.value(path, Response{404, QByteArrayLiteral("not here"), Mode::Normal, {}});

    QByteArray head = "HTTP/1.1 " + QByteArray::number(response.status) + " Canned\r\n";
    if (response.mode != Mode::NoLength)
        head += "Content-Length: " + QByteArray::number(response.body.size()) + "\r\n";
    if (!response.location.isEmpty())
        head += "Location: " + response.location + "\r\n";
    head += "Content-Type: application/octet-stream\r\nConnection: close\r\n\r\n";
    socket->write(head);

    switch (response.mode) {
    case Mode::Normal:
    case Mode::NoLength:
        socket->write(response.body);
        socket->disconnectFromHost();
        break;
    case Mode::HangUpHalfway:
        socket->write(response.body.left(response.body.size() / 2));
        socket->disconnectFromHost();
        break;
    case Mode::Stall:
        socket->write(response.body.left(response.body.size() / 2));
        m_stalled.append(socket);
        break;
    }
}
