#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

// A tiny HTTP/1.1 server on 127.0.0.1 that serves canned answers by path and
// can misbehave on purpose: hang up early, send no length, or stall.
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
        int status = 200;
        QByteArray body;
        Mode mode = Mode::Normal;
        QByteArray location; // for redirects
    };

    explicit LoopbackHttpServer(QObject *parent = nullptr);
    ~LoopbackHttpServer() override;

    QUrl url(const QString &path) const;
    void serve(const QString &path, const Response &response);
    int requestCount() const { return m_requestCount; }

    // An address on which nothing listens.
    static QUrl refusingUrl(const QString &path);

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket *socket);

    QTcpServer m_server;
    QHash<QString, Response> m_responses;
    QList<QPointer<QTcpSocket>> m_stalled;
    int m_requestCount = 0;
};
