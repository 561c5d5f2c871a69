#include "google/TokenStore.h"

#include "google/FakeKeychain.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quorvane::test {
namespace {

class TokenStoreTest : public testing::Test {
  protected:
    const QString key = tokenKeys::refreshToken;
    const QString mirrorKey =
        QStringLiteral("com.quorvane.token_fallback.com.quorvane.google.refresh_token");
    const QString value = QStringLiteral("1//gizli");
    TemporaryFolder folder;
    Preferences preferences{folder / "private/preferences.json"};
    FakeKeychain keychain;
    RecordingLog log;
};

TEST_F(TokenStoreTest, ServesTheMirrorAfterARestartWhenTheKeychainRefuses) {
    keychain.refusal = -25308;
    TokenStore(keychain, preferences, log).writeToken(key, value);
    EXPECT_EQ(
        log.messages(),
        QStringList{QStringLiteral("[Keychain] ⚠️ SecItemAdd hatası: -25308 (anahtar: %1) — "
                                   "Fallback kullanılacak")
                        .arg(key)});
    EXPECT_EQ(TokenStore(keychain, preferences, log).readToken(key), value);
    struct stat info {};
    ASSERT_EQ(::stat((folder / "private/preferences.json").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(TokenStoreTest, ReadsMemoryThenKeychainThenMirror) {
    preferences.setString(mirrorKey, QStringLiteral("mirror"));
    keychain.items[key] = QString();
    EXPECT_EQ(TokenStore(keychain, preferences, log).readToken(key), QStringLiteral("mirror"));
    TokenStore store(keychain, preferences, log);
    keychain.items[key] = QStringLiteral("keychain");
    EXPECT_EQ(store.readToken(key), QStringLiteral("keychain"));
    keychain.items.clear();
    EXPECT_EQ(store.readToken(key), QStringLiteral("keychain")) << "remembered";
}

} // namespace
} // namespace quorvane::test
