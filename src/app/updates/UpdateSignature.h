#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Ed25519 signatures (libsodium) over whole release files.
namespace UpdateSignature {

// Prepares libsodium; false when it cannot be used.
bool initialize();

// The raw 32-byte public key from its base64 text, or nothing when the text
// is not such a key.
std::optional<QByteArray> publicKeyFromBase64(const QByteArray &base64);

bool verify(QByteArrayView data, const QByteArray &signature, const QByteArray &publicKey);

// Verifies the file's whole contents without reading it into memory.
bool verifyFile(const QString &fileName, const QByteArray &signature, const QByteArray &publicKey);

} // namespace UpdateSignature
