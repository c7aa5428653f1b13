#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Ed25519 signatures (libsodium) over release statements. A release's
// signature covers neither the file alone nor the feed, but the statement
// that binds the file (its length and SHA-512) to the product and to the
// version the feed announces: a signed release cannot then be offered as
// another version, an older one relabelled as newer in particular, nor as
// another product's file. tools/sign-release writes the same statement.
namespace UpdateSignature {

inline constexpr auto product = "io.github.zonara.Zonara";

// Prepares libsodium; false when it cannot be used.
bool initialize();

// The raw 32-byte public key from its base64 text, or nothing when the text
// is not such a key.
std::optional<QByteArray> publicKeyFromBase64(const QByteArray &base64);

bool verify(QByteArrayView data, const QByteArray &signature, const QByteArray &publicKey);

// The signed text:
//   zonara-release 1\nproduct PRODUCT\nversion VERSION\nlength BYTES\nsha512 HEX\n
QByteArray releaseStatement(const QString &version, qint64 length, const QByteArray &sha512);

// The file's SHA-512, read in pieces; nothing when it cannot be read.
std::optional<QByteArray> fileSha512(const QString &fileName);

// Whether the file is the release the signature vouches for under this version.
bool verifyRelease(const QString &fileName, const QString &version, const QByteArray &signature,
                   const QByteArray &publicKey);

} // namespace UpdateSignature
