#pragma once

#include "emulator/GoogleEmulator.h"
#include "google/CurlHttpClient.h"
#include "google/FakeKeychain.h"
#include "google/GoogleOAuthManager.h"
#include "google/OAuthError.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <httplib.h>

namespace quorvane::test {

class FakeClient final : public OAuthClientIdentity {
  public:
    QString googleClientID() const override {
        return QStringLiteral("1234-abcd.apps.googleusercontent.com");
    }
    std::optional<QString> googleClientSecret() const override { return secret; }
    bool redirectsToLoopback() const override { return secret.has_value(); }

    std::optional<QString> secret;
};

/// A person with a browser: agrees to everything on the real authorization page, unless a test
/// gives them another mind.
class ScriptedSession final : public WebAuthSession {
  public:
    QUrl authenticate(const WebAuthRequest& request, const std::function<void(bool)>& started,
                      std::stop_token) override {
        const QString loopback = QStringLiteral("http://127.0.0.1:9/oauth2redirect");
        page = request.page(request.prefersLoopback ? loopback : request.schemeURI);
        started(true);
        if (answer)
            return answer();
        httplib::Client browser("127.0.0.1", page.port());
        const auto result =
            browser.Get(page.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority).constData());
        return QUrl::fromEncoded(QByteArray::fromStdString(
            result ? result->get_header_value("Location") : std::string()));
    }

    QUrl page;
    std::function<QUrl()> answer;
};

/// The manager over real storage, real HTTP and the local Google service.
struct OAuthWorld {
    OAuthWorld() {
        google.start();
        endpoints = GoogleEndpoints::resolve(google.baseURL());
    }

    /// Tokens as an earlier run left them; the access token is good for `seconds` from now.
    void storeTokens(double seconds) {
        const auto issued = google.issueTokens();
        tokens.writeToken(tokenKeys::accessToken, issued.accessToken);
        tokens.writeToken(tokenKeys::refreshToken, issued.refreshToken);
        tokens.writeToken(tokenKeys::expiry,
                          QString::number(unixSeconds(clock.now()) + seconds, 'f', 3));
        accessToken = issued.accessToken;
        refreshToken = issued.refreshToken;
    }

    void answerTokenRequest(int status, const QByteArray& body) {
        google.addDisturbance(
            {.kind = emulator::RequestKind::token, .status = status, .body = body});
    }

    void delayTokenRequest(std::chrono::milliseconds delay) {
        google.addDisturbance({.kind = emulator::RequestKind::token, .delay = delay});
    }

    int refreshes() const { return google.requestCount(emulator::RequestKind::token); }

    TemporaryFolder folder;
    Preferences preferences{folder / "preferences.json"};
    FakeKeychain keychain;
    RecordingLog log;
    FakeClock clock;
    FakeClient client;
    ScriptedSession session;
    GoogleEmulator google;
    GoogleEndpoints endpoints;
    CurlHttpClient http;
    TokenStore tokens{keychain, preferences, log};
    QString accessToken, refreshToken;
    GoogleOAuthManager manager{{endpoints, client, http, session, tokens, clock, log}};
};

} // namespace quorvane::test
