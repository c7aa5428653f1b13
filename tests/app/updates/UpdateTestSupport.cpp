#include "UpdateTestSupport.h"

#include <sodium.h>

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
                              "<sparkle:releaseNotesLink>https://zonara.example/notes/%2"
                              "</sparkle:releaseNotesLink>"
                              "<pubDate>Mon, 05 Jan 2026 10:00:00 +0000</pubDate>"
                              "<enclosure url=\"%3\" length=\"%4\" "
                              "type=\"application/vnd.appimage\" sparkle:edSignature=\"%5\"/>"
                              "</item>\n")
                   .arg(display, item.version, item.url.toString().toHtmlEscaped())
                   .arg(item.length)
                   .arg(QString::fromLatin1(item.signature.toBase64()))
                   .toUtf8();
    }
    xml += "</channel></rss>\n";
    return xml;
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
