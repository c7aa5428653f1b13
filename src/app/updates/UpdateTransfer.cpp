#include "UpdateTransfer.h"

#include "UpdateUrlPolicy.h"

#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

UpdateTransfer::UpdateTransfer(QNetworkAccessManager &network, const QUrl &url, QIODevice &sink,
                               const Limits &limits, QObject *parent)
    : QObject(parent)
    , m_network(network)
    , m_url(url)
    , m_sink(sink)
    , m_limits(limits)
{
    m_stallTimer.setSingleShot(true);
    m_stallTimer.setInterval(limits.stallTimeout);
    connect(&m_stallTimer, &QTimer::timeout, this, [this] { finish(Result::Stalled); });
}

UpdateTransfer::~UpdateTransfer()
{
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
    }
}

void UpdateTransfer::start()
{
    if (!UpdateUrlPolicy::isAllowed(m_url)) {
        QMetaObject::invokeMethod(
            this, [this] { finish(Result::InsecureAddress); }, Qt::QueuedConnection);
        return;
    }
    QNetworkRequest request(m_url);
    // Every redirect is checked against the same rule as the first address.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(5);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QByteArrayLiteral("Zonara/" ZONARA_VERSION));
    m_reply = m_network.get(request);
    connect(m_reply, &QNetworkReply::redirected, this, [this](const QUrl &target) {
        if (UpdateUrlPolicy::isAllowed(target))
            Q_EMIT m_reply->redirectAllowed();
        else
            finish(Result::InsecureAddress);
    });
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &UpdateTransfer::onMetaDataChanged);
    connect(m_reply, &QNetworkReply::readyRead, this, &UpdateTransfer::onReadyRead);
    connect(m_reply, &QNetworkReply::finished, this, &UpdateTransfer::onFinished);
    m_stallTimer.start();
}

void UpdateTransfer::cancel()
{
    finish(Result::Cancelled);
}

void UpdateTransfer::onMetaDataChanged()
{
    m_stallTimer.start();
    m_httpStatus = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // Redirects are judged by the redirected signal; errors end by themselves.
    if (m_httpStatus < 200 || m_httpStatus >= 300)
        return;
    // Refuse early what would be refused anyway once received.
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toLongLong() > m_limits.maximumSize)
        finish(Result::TooLarge);
}

void UpdateTransfer::onReadyRead()
{
    m_stallTimer.start();
    if (takeAvailable())
        Q_EMIT progress(m_received);
}

bool UpdateTransfer::takeAvailable()
{
    if (m_done || !m_reply)
        return false;
    // Only the status line of a redirect or an error carries a body we ignore.
    if (m_httpStatus < 200 || m_httpStatus >= 300) {
        m_reply->readAll();
        return false;
    }
    const qint64 available = m_reply->bytesAvailable();
    if (available <= 0)
        return false;
    if (m_received + available > m_limits.maximumSize) {
        finish(Result::TooLarge);
        return false;
    }
    const QByteArray chunk = m_reply->read(available);
    if (m_sink.write(chunk) != chunk.size()) {
        finish(Result::WriteFailed);
        return false;
    }
    m_received += chunk.size();
    return true;
}

void UpdateTransfer::onFinished()
{
    if (m_done)
        return;
    const QNetworkReply::NetworkError error = m_reply->error();
    if (error == QNetworkReply::NoError && takeAvailable())
        Q_EMIT progress(m_received);
    if (m_done)
        return;
    if (m_httpStatus >= 400 || (error == QNetworkReply::NoError && m_httpStatus != 0 &&
                                (m_httpStatus < 200 || m_httpStatus >= 300))) {
        finish(Result::ServerError);
    } else if (error == QNetworkReply::InsecureRedirectError ||
               error == QNetworkReply::ProtocolUnknownError) {
        finish(Result::InsecureAddress);
    } else if (error == QNetworkReply::RemoteHostClosedError && m_received > 0) {
        finish(Result::Incomplete); // the server hung up part-way through the body
    } else if (error != QNetworkReply::NoError) {
        finish(Result::ConnectionFailed);
    } else if (m_limits.exactSize && m_received != m_limits.maximumSize) {
        finish(Result::Incomplete);
    } else {
        finish(Result::Completed);
    }
}

void UpdateTransfer::finish(Result result)
{
    if (m_done)
        return;
    m_done = true;
    m_stallTimer.stop();
    if (m_reply) {
        m_reply->disconnect(this);
        // Aborting emits the reply's own finished signal, no longer connected.
        if (m_reply->isRunning())
            m_reply->abort();
        m_reply->deleteLater();
        m_reply = nullptr;
    }
    Q_EMIT finished(result);
}
