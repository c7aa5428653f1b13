#include "UpdateSignature.h"

#include <QFile>

#include <sodium.h>

bool UpdateSignature::initialize()
{
    return sodium_init() >= 0;
}

std::optional<QByteArray> UpdateSignature::publicKeyFromBase64(const QByteArray &base64)
{
    const auto decoded = QByteArray::fromBase64Encoding(
        base64.trimmed(), QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() != crypto_sign_PUBLICKEYBYTES)
        return std::nullopt;
    return decoded.decoded;
}

bool UpdateSignature::verify(QByteArrayView data, const QByteArray &signature,
                             const QByteArray &publicKey)
{
    if (signature.size() != crypto_sign_BYTES || publicKey.size() != crypto_sign_PUBLICKEYBYTES)
        return false;
    return crypto_sign_verify_detached(reinterpret_cast<const unsigned char *>(signature.data()),
                                       reinterpret_cast<const unsigned char *>(data.data()),
                                       static_cast<unsigned long long>(data.size()),
                                       reinterpret_cast<const unsigned char *>(publicKey.data())) ==
           0;
}

QByteArray UpdateSignature::releaseStatement(const QString &version, qint64 length,
                                             const QByteArray &sha512)
{
    return QByteArray("zonara-release 1\nproduct ") + product + "\nversion " + version.toUtf8() +
           "\nlength " + QByteArray::number(length) + "\nsha512 " + sha512.toHex() + '\n';
}

std::optional<QByteArray> UpdateSignature::fileSha512(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    crypto_hash_sha512_state state;
    crypto_hash_sha512_init(&state);
    QByteArray piece(1 << 16, Qt::Uninitialized);
    for (;;) {
        const qint64 read = file.read(piece.data(), piece.size());
        if (read < 0)
            return std::nullopt;
        if (read == 0)
            break;
        crypto_hash_sha512_update(&state, reinterpret_cast<const unsigned char *>(piece.data()),
                                  static_cast<unsigned long long>(read));
    }
    QByteArray digest(crypto_hash_sha512_BYTES, Qt::Uninitialized);
    crypto_hash_sha512_final(&state, reinterpret_cast<unsigned char *>(digest.data()));
    return digest;
}

bool UpdateSignature::verifyRelease(const QString &fileName, const QString &version,
                                    const QByteArray &signature, const QByteArray &publicKey)
{
    // A version that could break the statement's lines is never signed.
    if (version.isEmpty() || version.contains(u'\n'))
        return false;
    const std::optional<QByteArray> digest = fileSha512(fileName);
    if (!digest)
        return false;
    return verify(releaseStatement(version, QFile(fileName).size(), *digest), signature, publicKey);
}
