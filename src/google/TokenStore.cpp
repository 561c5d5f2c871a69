#include "google/TokenStore.h"

namespace quorvane {

namespace {

const QString fallbackPrefix = QStringLiteral("com.quorvane.token_fallback.");

} // namespace

TokenStore::TokenStore(SecretStore& keychain, Preferences& preferences, Log& log)
    : keychain_(keychain), preferences_(preferences), log_(log) {}

std::optional<QString> TokenStore::readToken(const QString& key) {
    const auto tokens = memoryTokens_.lock();
    if (const auto known = tokens->find(key); known != tokens->end() && !known->second.isEmpty())
        return known->second;
    auto found = keychain_.read(key);
    if (!found || found->isEmpty())
        found = preferences_.string(fallbackPrefix + key);
    if (!found || found->isEmpty())
        return std::nullopt;
    (*tokens)[key] = *found;
    return found;
}

void TokenStore::writeToken(const QString& key, const QString& value) {
    const auto tokens = memoryTokens_.lock();
    (*tokens)[key] = value;
    keychainWrite(key, value);
    try {
        preferences_.setString(fallbackPrefix + key, value);
    } catch (const Error& error) {
        logMirrorFailure(error);
    }
}

void TokenStore::deleteToken(const QString& key) {
    const auto tokens = memoryTokens_.lock();
    tokens->erase(key);
    keychain_.remove(key);
    try {
        preferences_.remove(fallbackPrefix + key);
    } catch (const Error& error) {
        logMirrorFailure(error);
    }
}

void TokenStore::keychainWrite(const QString& key, const QString& value) {
    if (const int status = keychain_.write(key, value); status != 0)
        log_.log(
            QStringLiteral("[Keychain] ⚠️ SecItemAdd hatası: %1 (anahtar: %2) — Fallback "
                           "kullanılacak")
                .arg(status)
                .arg(key));
}

void TokenStore::logMirrorFailure(const Error& error) {
    log_.log(QStringLiteral("[Keychain] ⚠️ Yedek kopya güncellenemedi: ") +
             error.localizedDescription());
}

} // namespace quorvane
