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

bool UpdateSignature::verifyFile(const QString &fileName, const QByteArray &signature,
                                 const QByteArray &publicKey)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const qint64 size = file.size();
    if (size == 0)
        return verify(QByteArrayView(), signature, publicKey);
    uchar *mapped = file.map(0, size);
    if (!mapped)
        return false;
    const bool valid =
        verify(QByteArrayView(reinterpret_cast<const char *>(mapped), size), signature, publicKey);
    file.unmap(mapped);
    return valid;
}
