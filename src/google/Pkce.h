#pragma once

#include <QString>

namespace quorvane {

/// Proof key for a code exchange (RFC 7636, method S256).
struct PkcePair {
    QString verifier;  ///< 64 characters
    QString challenge; ///< 43 characters
};

PkcePair makePKCEPair();

/// base64url without padding of the SHA-256 of the verifier.
QString codeChallenge(const QString& verifier);

/// `length` characters, each drawn uniformly from RFC 3986's unreserved characters with the
/// system's cryptographic random source.
QString randomString(int length);

} // namespace quorvane
