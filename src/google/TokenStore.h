#pragma once

#include "foundation/Error.h"
#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "foundation/Preferences.h"
#include "google/SecretStore.h"

#include <map>
#include <optional>

namespace quorvane {

/// The stored values of a sign-in; the keychain's account names.
namespace tokenKeys {
inline const QString accessToken = QStringLiteral("com.quorvane.google.access_token");
inline const QString refreshToken = QStringLiteral("com.quorvane.google.refresh_token");
inline const QString expiry = QStringLiteral("com.quorvane.google.token_expiry");
inline const QString email = QStringLiteral("com.quorvane.google.email");
inline const QString userID = QStringLiteral("com.quorvane.google.user_id");
} // namespace tokenKeys

/// Keeps the sign-in's values in memory, in the keychain, and in a clear-text mirror in the
/// preferences, which serves when the keychain refuses. Any thread; no operation throws. The
/// keychain is asked under the lock, so that a value being read cannot outlive its deletion: a
/// call may take the seconds that a mute keychain takes, and never belongs on the main thread.
class TokenStore {
  public:
    TokenStore(SecretStore& keychain, Preferences& preferences, Log& log);

    /// From the first tier that holds a value that is not empty.
    std::optional<QString> readToken(const QString& key);

    /// To all three tiers, the mirror whether or not the keychain took it.
    void writeToken(const QString& key, const QString& value);

    /// From all three tiers.
    void deleteToken(const QString& key);

  private:
    void keychainWrite(const QString& key, const QString& value);
    void logMirrorFailure(const Error& error);

    SecretStore& keychain_;
    Preferences& preferences_;
    Log& log_;
    Guarded<std::map<QString, QString>> memoryTokens_;
};

} // namespace quorvane
