#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

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
