#include "google/Pkce.h"

#include "foundation/Crypto.h"

#include <string_view>

namespace quorvane {

namespace {

constexpr std::string_view alphabet =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~";

} // namespace

PkcePair makePKCEPair() {
    const QString verifier = randomString(64);
    return {verifier, codeChallenge(verifier)};
}

QString codeChallenge(const QString& verifier) {
    return QString::fromLatin1(
        Sha256::digest(verifier.toUtf8())
            .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

QString randomString(int length) {
    // Bytes past the last whole multiple of the alphabet would favour its first characters.
    constexpr size_t usable = 256 - 256 % alphabet.size();
    QString text;
    while (text.size() < length) {
        for (const char c : secureRandomBytes(length)) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte < usable && text.size() < length)
                text += QLatin1Char(alphabet[byte % alphabet.size()]);
        }
    }
    return text;
}

} // namespace quorvane
