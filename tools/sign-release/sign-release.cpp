// zonara-sign-release: the maintainers' side of Zonara's updates. Makes the
// Ed25519 key pair, signs a release file and prints the feed's enclosure line.
// Plain C++ and libsodium, so that it builds anywhere the releases are made.

#include <sodium.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int usageError = 2;

int usage()
{
    std::cerr << "usage:\n"
                 "  zonara-sign-release generate-keys SECRET_KEY_FILE\n"
                 "  zonara-sign-release public-key SECRET_KEY_FILE\n"
                 "  zonara-sign-release sign SECRET_KEY_FILE RELEASE_FILE DOWNLOAD_URL VERSION\n"
                 "  zonara-sign-release verify PUBLIC_KEY RELEASE_FILE VERSION SIGNATURE\n";
    return usageError;
}

std::string toBase64(const unsigned char *data, size_t size)
{
    std::string text(sodium_base64_encoded_len(size, sodium_base64_VARIANT_ORIGINAL), '\0');
    sodium_bin2base64(text.data(), text.size(), data, size, sodium_base64_VARIANT_ORIGINAL);
    text.resize(std::strlen(text.c_str()));
    return text;
}

std::optional<Bytes> fromBase64(std::string_view text)
{
    Bytes bytes(text.size());
    size_t length = 0;
    const char *end = nullptr;
    if (sodium_base642bin(bytes.data(), bytes.size(), text.data(), text.size(), " \t\r\n", &length,
                          &end, sodium_base64_VARIANT_ORIGINAL) != 0 ||
        end != text.data() + text.size()) {
        return std::nullopt;
    }
    bytes.resize(length);
    return bytes;
}

std::optional<Bytes> readFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return std::nullopt;
    Bytes bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad())
        return std::nullopt;
    return bytes;
}

// The 64-byte libsodium secret key from the key file, which holds it (or its
// 32-byte seed) in base64.
std::optional<Bytes> readSecretKey(const std::string &path)
{
    const auto content = readFile(path);
    if (!content) {
        std::cerr << "Cannot read " << path << ": " << std::strerror(errno) << '\n';
        return std::nullopt;
    }
    const auto decoded = fromBase64(
        std::string_view(reinterpret_cast<const char *>(content->data()), content->size()));
    Bytes secret(crypto_sign_SECRETKEYBYTES);
    Bytes publicKey(crypto_sign_PUBLICKEYBYTES);
    if (decoded && decoded->size() == crypto_sign_SECRETKEYBYTES) {
        secret = *decoded;
    } else if (decoded && decoded->size() == crypto_sign_SEEDBYTES) {
        crypto_sign_seed_keypair(publicKey.data(), secret.data(), decoded->data());
    } else {
        std::cerr << path << " does not hold a secret key made by generate-keys\n";
        return std::nullopt;
    }
    return secret;
}

std::string publicKeyOf(const Bytes &secret)
{
    unsigned char publicKey[crypto_sign_PUBLICKEYBYTES];
    crypto_sign_ed25519_sk_to_pk(publicKey, secret.data());
    return toBase64(publicKey, sizeof publicKey);
}

std::string xmlAttribute(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string contentType(std::string_view file)
{
    if (endsWith(file, ".AppImage"))
        return "application/vnd.appimage";
    if (endsWith(file, ".deb"))
        return "application/vnd.debian.binary-package";
    return "application/octet-stream";
}

// Zonara downloads only over HTTPS (plain HTTP only from this machine, for tests).
bool isAcceptedUrl(std::string_view url)
{
    if (url.starts_with("https://"))
        return url.size() > 8;
    for (const std::string_view loopback :
         {"http://localhost:", "http://localhost/", "http://127.", "http://[::1]"}) {
        if (url.starts_with(loopback))
            return true;
    }
    return false;
}

// Versions are dotted numbers; anything else could break the statement's lines.
bool isAcceptedVersion(std::string_view version)
{
    if (version.empty() || version.size() > 64 || version.front() == '.' || version.back() == '.')
        return false;
    for (const char c : version) {
        if (!(c >= '0' && c <= '9') && c != '.')
            return false;
    }
    return version.find("..") == std::string_view::npos;
}

// What the signature covers: the file bound to the product and the version
// it is released as, the same text the program checks (UpdateSignature).
Bytes releaseStatement(const Bytes &release, std::string_view version)
{
    unsigned char digest[crypto_hash_sha512_BYTES];
    crypto_hash_sha512(digest, release.data(), release.size());
    std::string hex(sizeof digest * 2 + 1, '\0');
    sodium_bin2hex(hex.data(), hex.size(), digest, sizeof digest);
    hex.pop_back();
    const std::string text = "zonara-release 1\nproduct io.github.zonara.Zonara\nversion " +
                             std::string(version) + "\nlength " + std::to_string(release.size()) +
                             "\nsha512 " + hex + '\n';
    return Bytes(text.begin(), text.end());
}

int generateKeys(const std::string &secretKeyFile)
{
    unsigned char publicKey[crypto_sign_PUBLICKEYBYTES];
    Bytes secret(crypto_sign_SECRETKEYBYTES);
    crypto_sign_keypair(publicKey, secret.data());
    // Never overwrite a key: releases already signed with it would be stranded.
    const int fd = ::open(secretKeyFile.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (fd < 0) {
        std::cerr << "Cannot create " << secretKeyFile << ": " << std::strerror(errno) << '\n';
        return 1;
    }
    const std::string text = toBase64(secret.data(), secret.size()) + '\n';
    sodium_memzero(secret.data(), secret.size());
    const bool written = ::write(fd, text.data(), text.size()) == ssize_t(text.size());
    if (::close(fd) != 0 || !written) {
        std::cerr << "Cannot write " << secretKeyFile << '\n';
        ::unlink(secretKeyFile.c_str());
        return 1;
    }
    std::cout << toBase64(publicKey, sizeof publicKey) << '\n';
    std::cerr << "Secret key written to " << secretKeyFile
              << ". Keep it private and backed up.\n"
                 "Build releases with -DZONARA_UPDATE_PUBLIC_KEY=<the public key above>.\n";
    return 0;
}

int printPublicKey(const std::string &secretKeyFile)
{
    auto secret = readSecretKey(secretKeyFile);
    if (!secret)
        return 1;
    std::cout << publicKeyOf(*secret) << '\n';
    sodium_memzero(secret->data(), secret->size());
    return 0;
}

int sign(const std::string &secretKeyFile, const std::string &releaseFile, const std::string &url,
         const std::string &version)
{
    if (!isAcceptedUrl(url)) {
        std::cerr << "The download address must start with https://\n";
        return usageError;
    }
    if (!isAcceptedVersion(version)) {
        std::cerr << "The version must be dotted numbers, such as 1.4.0\n";
        return usageError;
    }
    auto secret = readSecretKey(secretKeyFile);
    if (!secret)
        return 1;
    const auto release = readFile(releaseFile);
    if (!release || release->empty()) {
        std::cerr << "Cannot read " << releaseFile << " (or it is empty)\n";
        return 1;
    }
    const Bytes statement = releaseStatement(*release, version);
    unsigned char signature[crypto_sign_BYTES];
    crypto_sign_detached(signature, nullptr, statement.data(), statement.size(), secret->data());
    unsigned char publicKey[crypto_sign_PUBLICKEYBYTES];
    crypto_sign_ed25519_sk_to_pk(publicKey, secret->data());
    sodium_memzero(secret->data(), secret->size());
    // A damaged key file would sign releases no one can verify.
    if (crypto_sign_verify_detached(signature, statement.data(), statement.size(), publicKey) !=
        0) {
        std::cerr << "The signature does not verify; the secret key file is damaged\n";
        return 1;
    }
    std::cout << "<enclosure url=\"" << xmlAttribute(url) << "\" length=\"" << release->size()
              << "\" type=\"" << contentType(releaseFile) << "\" sparkle:version=\"" << version
              << "\" sparkle:edSignature=\"" << toBase64(signature, sizeof signature) << "\"/>\n";
    return 0;
}

int verify(const std::string &publicKeyText, const std::string &releaseFile,
           const std::string &version, const std::string &signatureText)
{
    const auto publicKey = fromBase64(publicKeyText);
    const auto signature = fromBase64(signatureText);
    if (!publicKey || publicKey->size() != crypto_sign_PUBLICKEYBYTES) {
        std::cerr << "Not a public key: " << publicKeyText << '\n';
        return usageError;
    }
    if (!signature || signature->size() != crypto_sign_BYTES) {
        std::cerr << "Not a signature: " << signatureText << '\n';
        return usageError;
    }
    const auto release = readFile(releaseFile);
    if (!release) {
        std::cerr << "Cannot read " << releaseFile << '\n';
        return 1;
    }
    const Bytes statement = releaseStatement(*release, version);
    if (crypto_sign_verify_detached(signature->data(), statement.data(), statement.size(),
                                    publicKey->data()) != 0) {
        std::cout << "invalid\n";
        return 1;
    }
    std::cout << "valid\n";
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (sodium_init() < 0) {
        std::cerr << "libsodium could not be initialised\n";
        return 1;
    }
    const std::vector<std::string> args(argv + 1, argv + argc);
    if (args.size() == 2 && args[0] == "generate-keys")
        return generateKeys(args[1]);
    if (args.size() == 2 && args[0] == "public-key")
        return printPublicKey(args[1]);
    if (args.size() == 5 && args[0] == "sign")
        return sign(args[1], args[2], args[3], args[4]);
    if (args.size() == 5 && args[0] == "verify")
        return verify(args[1], args[2], args[3], args[4]);
    return usage();
}
