#include "UpdateTestSupport.h"

#include "UpdateSignature.h"

#include <QTcpSocket>

#include <sodium.h>

LoopbackHttpServer::LoopbackHttpServer()
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            socket->setParent(this); // so a stalled answer ends with the server
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("cannot listen on the loopback address");
}

QUrl LoopbackHttpServer::url(const QString &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path));
}

QUrl LoopbackHttpServer::refusingUrl(const QString &path)
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    const quint16 port = probe.serverPort();
    probe.close();
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port).arg(path));
}

void LoopbackHttpServer::answer(QTcpSocket *socket)
{
    const QByteArray request = socket->property("request").toByteArray() + socket->readAll();
    socket->setProperty("request", request);
    if (!request.contains("\r\n\r\n") || socket->property("answered").toBool())
        return;
    socket->setProperty("answered", true);
    ++m_requestCount;

    const QList<QByteArray> requestLine = request.left(request.indexOf("\r\n")).split(' ');
    const QString path = QString::fromLatin1(requestLine.value(1));
    const Response response = m_responses.value(path, Response{404, "not here", Mode::Normal, {}});

    QByteArray head = "HTTP/1.1 " + QByteArray::number(response.status) + " Canned\r\n";
    if (response.mode != Mode::NoLength)
        head += "Content-Length: " + QByteArray::number(response.body.size()) + "\r\n";
    if (!response.location.isEmpty())
        head += "Location: " + response.location + "\r\n";
    socket->write(head + "Content-Type: application/octet-stream\r\nConnection: close\r\n\r\n");

    const bool whole = response.mode == Mode::Normal || response.mode == Mode::NoLength;
    socket->write(whole ? response.body : response.body.left(response.body.size() / 2));
    if (response.mode != Mode::Stall)
        socket->disconnectFromHost();
}

namespace UpdateTestSupport {

KeyPair makeKeyPair()
{
    if (sodium_init() < 0)
        qFatal("libsodium cannot start");
    KeyPair keys;
    keys.publicKey.resize(crypto_sign_PUBLICKEYBYTES);
    keys.secretKey.resize(crypto_sign_SECRETKEYBYTES);
    crypto_sign_keypair(reinterpret_cast<unsigned char *>(keys.publicKey.data()),
                        reinterpret_cast<unsigned char *>(keys.secretKey.data()));
    return keys;
}

QByteArray sign(const QByteArray &data, const KeyPair &keys)
{
    QByteArray signature(crypto_sign_BYTES, '\0');
    crypto_sign_detached(reinterpret_cast<unsigned char *>(signature.data()), nullptr,
                         reinterpret_cast<const unsigned char *>(data.constData()),
                         static_cast<unsigned long long>(data.size()),
                         reinterpret_cast<const unsigned char *>(keys.secretKey.constData()));
    return signature;
}

QByteArray signRelease(const QByteArray &file, const QString &version, const KeyPair &keys)
{
    QByteArray digest(crypto_hash_sha512_BYTES, '\0');
    crypto_hash_sha512(reinterpret_cast<unsigned char *>(digest.data()),
                       reinterpret_cast<const unsigned char *>(file.constData()),
                       static_cast<unsigned long long>(file.size()));
    return sign(UpdateSignature::releaseStatement(version, file.size(), digest), keys);
}

QByteArray feed(const QList<FeedItem> &items)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                     "<rss version=\"2.0\" "
                     "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">\n"
                     "<channel><title>Zonara</title>\n";
    for (const FeedItem &item : items) {
        const QString display = item.displayVersion.isEmpty() ? item.version : item.displayVersion;
        xml += QStringLiteral("<item><title>Zonara %1</title>"
                              "<sparkle:version>%2</sparkle:version>"
                              "<sparkle:shortVersionString>%1</sparkle:shortVersionString>"
                              "<enclosure url=\"%3\" length=\"%4\" "
                              "type=\"application/vnd.appimage\" sparkle:edSignature=\"%5\"/>"
                              "</item>\n")
                   .arg(display, item.version, item.url.toString().toHtmlEscaped())
                   .arg(item.length)
                   .arg(QString::fromLatin1(item.signature.toBase64()))
                   .toUtf8();
    }
    return xml + "</channel></rss>\n";
}

QByteArray releasePayload(const QString &version)
{
    QByteArray payload;
    const QByteArray line = "Zonara release " + version.toUtf8() + " ";
    for (int i = 0; payload.size() < 300 * 1024; ++i)
        payload += line + QByteArray::number(i) + '\n';
    return payload;
}

} // namespace UpdateTestSupport
