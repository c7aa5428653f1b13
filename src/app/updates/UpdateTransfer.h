#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <chrono>

class QIODevice;
class QNetworkAccessManager;
class QNetworkReply;

// One HTTP(S) GET that writes its body to a device, never takes more than a
// set number of bytes and gives up when the server stops sending.
class UpdateTransfer final : public QObject
{
    Q_OBJECT
public:
    enum class Result {
        Completed,
        Cancelled,
        InsecureAddress, // the address or a redirect is neither HTTPS nor loopback
        ConnectionFailed,
        ServerError, // an HTTP status other than success
        Stalled,
        TooLarge,
        Incomplete, // fewer bytes than expected
        WriteFailed,
    };
    Q_ENUM(Result)

    struct Limits
    {
        qint64 maximumSize = 0;
        bool exactSize = false; // the body must be exactly maximumSize bytes
        std::chrono::milliseconds stallTimeout{0};
    };

    UpdateTransfer(QNetworkAccessManager &network, const QUrl &url, QIODevice &sink,
                   const Limits &limits, QObject *parent = nullptr);
    ~UpdateTransfer() override;

    // Starts the request; finished() always comes later, never from start().
    void start();
    // Ends the transfer at once with Cancelled, unless it has already ended.
    void cancel();

    int httpStatus() const { return m_httpStatus; }

Q_SIGNALS:
    void progress(qint64 received);
    void finished(UpdateTransfer::Result result);

private:
    void onMetaDataChanged();
    void onReadyRead();
    void onFinished();
    void finish(Result result);
    bool takeAvailable();

    QNetworkAccessManager &m_network;
    QUrl m_url;
    QIODevice &m_sink;
    Limits m_limits;
    QPointer<QNetworkReply> m_reply;
    QTimer m_stallTimer;
    qint64 m_received = 0;
    int m_httpStatus = 0;
    bool m_done = false;
};
