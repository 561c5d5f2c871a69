#include "google/OAuthMessages.h"

#include "google/OAuthWorld.h"
#include "google/ScriptedHttp.h"
#include "support/Failures.h"

#include <QUrlQuery>

#include <gtest/gtest.h>

#include <future>
#include <latch>
#include <set>

namespace quorvane::test {
namespace {

using emulator::RequestKind;

std::optional<OAuthError::Case> failureOf(const std::function<void()>& work) {
    try {
        work();
        return std::nullopt;
    } catch (const OAuthError& error) {
        return error.which();
    }
}

class GoogleOAuthManagerTest : public testing::Test, protected OAuthWorld {
  protected:
    QString token() { return manager.validAccessToken({}); }
};

TEST(OAuthMessagesTest, FindsTheCodeInWhateverFormTheCallbackHas) {
    const struct {
        const char* callback;
        const char* code;
    } rows[] = {
        {"c.b.a:/oauth2redirect?code=4%2F0Ab&state=x", "4/0Ab"},
        {"c.b.a:/oauth2redirect?state=x&code=4/0A%2Bb%3D", "4/0A+b="},
        {"c.b.a:/oauth2redirect?code=&code=second", "second"},
        {"c.b.a:/oauth2redirect&code=4%2F0Ab&scope=s", "4/0Ab"},
        {"c.b.a:/oauth2redirect#x?code=4%2F0Ab", "4/0Ab"},
        {"c.b.a:/oauth2redirect?error=access_denied&state=x", ""},
        {"c.b.a:/oauth2redirect?barcode=1&code=", ""},
        {"c.b.a:/oauth2redirect", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(oauth::authCode(QUrl(QString::fromUtf8(row.callback))).value_or(QString()),
                  QString::fromUtf8(row.code))
            << row.callback;
}

TEST_F(GoogleOAuthManagerTest, LogsWhatItDecidesButNoSecret) {
    client.secret = QStringLiteral("gizli-anahtar");
    manager.signIn({});
    clock.advance(std::chrono::hours(2));
    token();
    const QString all = log.messages().join(u'\n');
    for (const char* part : {"(isMain: true): true", "hasSecret: true", "Refresh token kaydedildi.",
                             "Yanıtta refresh token yer almadı"})
        EXPECT_TRUE(all.contains(QString::fromUtf8(part))) << part;
    const auto verifier =
        QUrlQuery(QString::fromUtf8(google.requests(RequestKind::token).at(0).body))
            .queryItemValue(QStringLiteral("code_verifier"));
    for (const QString& secret :
         {*client.secret, verifier, tokens.readToken(tokenKeys::accessToken).value(),
          tokens.readToken(tokenKeys::refreshToken).value()})
        EXPECT_FALSE(all.contains(secret));
}

TEST_F(GoogleOAuthManagerTest, EndsASignInThatBringsNoCode) {
    google.change([](auto& behaviour) { behaviour.consentDenied = true; });
    EXPECT_EQ(failureOf([&] { manager.signIn({}); }), OAuthError::Case::missingCode);
    EXPECT_TRUE(log.contains(QStringLiteral("[OAuth] ❌ URL içinde code bulunamadı: ")));

    session.answer = [] { return QUrl(); };
    EXPECT_EQ(failureOf([&] { manager.signIn({}); }), OAuthError::Case::missingCode);
    EXPECT_TRUE(log.contains(QStringLiteral("[OAuth] ❌ Callback URL boş geldi!")));

    session.answer = []() -> QUrl { throw Error(QStringLiteral("vazgeçildi")); };
    EXPECT_THROW(manager.signIn({}), Error);
    EXPECT_TRUE(log.contains(QStringLiteral("[OAuth] ❌ ASWebAuthSession hatası: vazgeçildi")));

    session.answer = []() -> QUrl { throw Cancelled(); };
    EXPECT_THROW(manager.signIn({}), Cancelled);
    EXPECT_FALSE(manager.isSignedIn());
    EXPECT_EQ(refreshes(), 0);
}

TEST_F(GoogleOAuthManagerTest, RefusesAnswersThatAreNoTokens) {
    for (const auto& [body, logged] :
         {std::pair<QByteArray, const char*>{"<html>proxy</html>",
                                             "[OAuth] ❌ Geçersiz token yanıtı: <html>proxy</html>"},
          {R"({"refresh_token": "r-1"})", R"(yanıtı: {"refresh_token":"***"})"},
          {R"({"access_token": "ya29.\"cut)", R"(yanıtı: {"access_token":"***")"},
          {R"({"access_token": 7})", "yanıtı: {"},
          {"\xff\xfe", "yanıtı: Bilinmeyen yanıt"}}) {
        answerTokenRequest(200, body);
        EXPECT_EQ(failureOf([&] { manager.signIn({}); }), OAuthError::Case::invalidResponse);
        EXPECT_TRUE(log.contains(QString::fromUtf8(logged))) << log.messages().last().toStdString();
    }
    for (const int status : {400, 401, 403, 404, 408, 413, 429, 500, 503}) {
        answerTokenRequest(status, "meşgul");
        const QString told = QStringLiteral("HTTP %1: meşgul").arg(status);
        EXPECT_EQ(messageOf([&] { manager.signIn({}); }),
                  QStringLiteral("OAuth: Token takasi basarisiz -> ") + told);
        EXPECT_TRUE(log.contains(QStringLiteral("[OAuth] ❌ Token takası başarısız! ") + told));
    }
    EXPECT_FALSE(manager.isSignedIn());
}

TEST_F(GoogleOAuthManagerTest, JudgesASignInByWhatWasGranted) {
    const QString prefix = QStringLiteral("https://www.googleapis.com/auth/photoslibrary.");
    const QString append = prefix + QStringLiteral("appendonly");
    const QString read = prefix + QStringLiteral("readonly");
    const QString readOwn = read + QStringLiteral(".appcreateddata");
    QUrl shownAddress;
    const auto signInWithout = [&](const QString& declined) {
        google.change([&](auto& behaviour) { behaviour.declinedScopes = declined; });
        return manager.signIn({}, [&](const QUrl& page) { shownAddress = page; });
    };
    EXPECT_TRUE(signInWithout(read).mayListAlbums);
    EXPECT_EQ(shownAddress, session.page);
    EXPECT_FALSE(signInWithout(read + u' ' + readOwn).mayListAlbums);

    const auto before = keychain.items;
    EXPECT_TRUE(messageOf([&] { signInWithout(append); }).contains(u"photoslibrary.appendonly"));
    EXPECT_EQ(keychain.items, before) << "the session that was there goes on";
}

TEST_F(GoogleOAuthManagerTest, KnowsWhoseSignInItIs) {
    manager.signIn({});
    const auto first = manager.userID();
    EXPECT_EQ(first, emulator::Person().id);
    google.change([](auto& behaviour) {
        behaviour.person = {QStringLiteral("2"), QStringLiteral("b@example.com")};
    });
    google.addDisturbance({.kind = RequestKind::userinfo, .status = 500});
    manager.signIn({});
    EXPECT_EQ(manager.userID(), std::nullopt) << "the tokens are another's already";
    EXPECT_EQ(manager.email(), std::nullopt);
    manager.learnIdentity({});
    EXPECT_EQ(manager.userID(), QStringLiteral("2"));
    EXPECT_EQ(manager.email(), QStringLiteral("b@example.com"));
    manager.learnIdentity({});
    EXPECT_EQ(google.requestCount(RequestKind::userinfo), 3);

    for (const auto& [body, userID] : {std::pair{R"({"sub":"77"})", "77"}, {R"({"id":7})", ""}}) {
        google.addDisturbance({.kind = RequestKind::userinfo, .body = body});
        manager.signIn({});
        EXPECT_EQ(manager.userID().value_or(QString()), QString::fromUtf8(userID));
    }
}

TEST_F(GoogleOAuthManagerTest, RefreshesAMinuteBeforeTheExpiry) {
    const struct {
        const char* expiry; ///< empty: none stored
        bool refreshes;
    } rows[] = {{"1700000059", true},
                {"1700000060", true},
                {"1700000061", false},
                {"1.700001e9", false},
                {" 1700000999", true},
                {"1700000999\n", true},
                {"", true},
                {"yarın", true}};
    for (const auto& row : rows) {
        storeTokens(0);
        tokens.writeToken(tokenKeys::expiry, QString::fromUtf8(row.expiry));
        EXPECT_EQ(token() != accessToken, row.refreshes) << row.expiry;
    }
}

TEST_F(GoogleOAuthManagerTest, FiftyCallersShareOneRefresh) {
    storeTokens(0);
    delayTokenRequest(std::chrono::milliseconds(100));
    std::latch ready(50);
    std::vector<std::future<QString>> callers;
    for (int i = 0; i < 50; ++i)
        callers.push_back(std::async(std::launch::async, [&] {
            ready.arrive_and_wait();
            return token();
        }));
    std::set<QString> results;
    for (auto& caller : callers)
        results.insert(caller.get());
    EXPECT_EQ(results, std::set<QString>{tokens.readToken(tokenKeys::accessToken).value()});
    EXPECT_EQ(refreshes(), 1);
}

TEST_F(GoogleOAuthManagerTest, AFailedRefreshSignsNobodyOutAndIsTriedAgain) {
    storeTokens(0);
    for (const int status : {400, 401, 403, 404, 408, 413, 429, 500, 503}) {
        answerTokenRequest(status, R"({"error":"invalid_grant"})");
        EXPECT_EQ(failureOf([&] { token(); }), OAuthError::Case::refreshFailed) << status;
    }
    EXPECT_TRUE(log.contains(
        QStringLiteral(R"([OAuth] ❌ Token yenileme başarısız: {"error":"invalid_grant"})")));
    for (const char* body : {"", "<html>", "{}"}) {
        answerTokenRequest(200, body);
        EXPECT_EQ(failureOf([&] { token(); }), OAuthError::Case::invalidResponse) << body;
    }
    EXPECT_EQ(tokens.readToken(tokenKeys::refreshToken), refreshToken);
    EXPECT_TRUE(manager.isSignedIn());
    EXPECT_NE(token(), accessToken);

    google.stop();
    clock.advance(std::chrono::hours(2));
    EXPECT_THROW(token(), TransportError);
    EXPECT_TRUE(manager.isSignedIn());
}

TEST_F(GoogleOAuthManagerTest, ARefusedTokenIsRenewedOnceForAllWhoHeldIt) {
    storeTokens(1000);
    const auto renew = [&] { return manager.renewedAccessToken(accessToken, {}); };
    auto other = std::async(std::launch::async, renew);
    const std::optional<QString> renewed = renew();
    EXPECT_NE(renewed, accessToken);
    EXPECT_EQ(other.get(), renewed);
    EXPECT_EQ(renew(), renewed);
    EXPECT_EQ(refreshes(), 1);
    tokens.deleteToken(tokenKeys::refreshToken);
    EXPECT_EQ(manager.renewedAccessToken(*renewed, {}), std::nullopt);
}

TEST_F(GoogleOAuthManagerTest, SignOutRevokesAndForgetsWhateverGoogleSays) {
    for (const bool googleAnswers : {true, false}) {
        storeTokens(1000);
        tokens.writeToken(tokenKeys::email, QStringLiteral("a@example.com"));
        tokens.writeToken(tokenKeys::userID, QStringLiteral("1"));
        EXPECT_EQ(keychain.items.size(), 5U);
        if (!googleAnswers)
            google.stop();
        manager.signOut({});
        EXPECT_FALSE(manager.isSignedIn());
        EXPECT_EQ(manager.email(), std::nullopt);
        EXPECT_EQ(manager.userID(), std::nullopt);
        EXPECT_TRUE(keychain.items.empty());
        EXPECT_FALSE(readFile(folder / "preferences.json").contains("token_fallback"));
    }
    const auto revocations = google.requests(RequestKind::revoke);
    ASSERT_EQ(revocations.size(), 1u);
    EXPECT_TRUE(revocations[0].body.startsWith("token=ya29"));
    EXPECT_EQ(revocations[0].status, 200);
    EXPECT_TRUE(
        log.contains(QStringLiteral("[OAuth] 🚪 Oturum kapatıldı ve tüm token'lar temizlendi.")));
}

TEST_F(GoogleOAuthManagerTest, ARefreshInFlightDoesNotUndoASignOutOrASignIn) {
    for (const bool signsOut : {true, false}) {
        storeTokens(0);
        google.clearRequests();
        delayTokenRequest(std::chrono::milliseconds(300));
        const int before = refreshes();
        auto caller = std::async(std::launch::async, [&] { return token(); });
        ASSERT_TRUE(google.waitForRequests(RequestKind::token, before + 1));
        if (signsOut) {
            manager.signOut({});
            EXPECT_EQ(failureOf([&] { caller.get(); }), OAuthError::Case::notSignedIn);
            EXPECT_FALSE(manager.isSignedIn());
        } else {
            manager.signIn({});
            EXPECT_EQ(caller.get(), tokens.readToken(tokenKeys::accessToken));
            EXPECT_NE(tokens.readToken(tokenKeys::refreshToken), refreshToken);
        }
    }
}

TEST(GoogleOAuthManagerShutdownTest, EndsARefreshInFlightAtOnce) {
    auto world = std::make_unique<OAuthWorld>();
    world->google.addDisturbance({.kind = RequestKind::token, .stall = true});
    world->storeTokens(0);
    std::stop_source stop;
    auto caller = std::async(std::launch::async,
                             [&] { return world->manager.validAccessToken(stop.get_token()); });
    ASSERT_TRUE(world->google.waitForRequests(RequestKind::token, 1));
    stop.request_stop();
    EXPECT_THROW(caller.get(), Cancelled);
    const auto begin = std::chrono::steady_clock::now();
    world.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

} // namespace
} // namespace quorvane::test
