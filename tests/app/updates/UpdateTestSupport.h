#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

// A tiny HTTP/1.1 server on 127.0.0.1 that serves canned answers by path and
// can misbehave on purpose.
class LoopbackHttpServer final : public QObject
{
    Q_OBJECT
public:
    enum class Mode {
        Normal,        // Content-Length and the whole body
        NoLength,      // no Content-Length; the body ends when the connection closes
        HangUpHalfway, // Content-Length of the whole body, half of it, then close
        Stall,         // headers and half of the body, then silence
    };

    struct Response
    {
        Response(int status = 200, const QByteArray &body = {}, Mode mode = Mode::Normal,
                 const QByteArray &location = {})
            : status(status)
            , body(body)
            , mode(mode)
            , location(location)
        {}
        int status;
        QByteArray body;
        Mode mode;
        QByteArray location; // for redirects
    };

    LoopbackHttpServer();

    QUrl url(const QString &path) const;
    void serve(const QString &path, const Response &response) { m_responses[path] = response; }
    int requestCount() const { return m_requestCount; }

    // An address on which nothing listens.
    static QUrl refusingUrl(const QString &path);

private:
    void answer(QTcpSocket *socket);

    QTcpServer m_server;
    QHash<QString, Response> m_responses;
    int m_requestCount = 0;
};

// Keys, signatures and feeds for the updater's tests.
namespace UpdateTestSupport {

struct KeyPair
{
    QByteArray publicKey; // raw 32 bytes
    QByteArray secretKey; // raw 64 bytes
    QByteArray publicKeyBase64() const { return publicKey.toBase64(); }
};

KeyPair makeKeyPair();
QByteArray sign(const QByteArray &data, const KeyPair &keys);
// The signature of a release file as tools/sign-release makes it.
QByteArray signRelease(const QByteArray &file, const QString &version, const KeyPair &keys);

struct FeedItem
{
    QString version;
    QUrl url;
    qint64 length = 0;
    QByteArray signature; // raw
    QString displayVersion;
};

QByteArray feed(const QList<FeedItem> &items);

// Some hundred kilobytes that differ from release to release.
QByteArray releasePayload(const QString &version);

} // namespace UpdateTestSupport
