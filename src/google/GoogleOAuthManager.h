#pragma once

#include "foundation/Clock.h"
#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "google/AccessTokenProvider.h"
#include "google/GoogleEndpoints.h"
#include "google/HttpClient.h"
#include "google/TokenStore.h"
#include "google/WebAuthSession.h"

#include <exception>
#include <memory>
#include <optional>
#include <thread>

namespace quorvane {

/// What the person allowed, once they allowed uploading.
struct SignInOutcome {
    bool mayListAlbums = true; ///< else only remembered albums can be offered; uploading works
};

/// The single keeper of the user's Google authorisation: OAuth 2.0 authorization code (RFC 6749)
/// with PKCE (RFC 7636). Any thread but the main one: calls block on the network or the keychain.
///
///     signIn ──> WebAuthSession ──callback──> exchangeCode ──> saveTokens ──> identity
///     validAccessToken ──stored and fresh──> token
///                      └─expired──> the one refresh in flight ──> saveTokens ──> token
class GoogleOAuthManager final : public AccessTokenProvider {
  public:
    struct Collaborators {
        const GoogleEndpoints& endpoints;
        const OAuthClientIdentity& client;
        HttpClient& http;
        WebAuthSession& webAuthSession;
        TokenStore& tokens;
        Clock& clock;
        Log& log;
    };

    explicit GoogleOAuthManager(const Collaborators& collaborators);

    /// The whole interactive flow; leaves tokens and identity stored. `showAddress` is told the
    /// page's address, for a person whose browser does not open by itself. A consent without
    /// uploading is an `Error` that changes nothing. Also throws `OAuthError`, the web session's
    /// own error, `TransportError`, or `Cancelled`.
    SignInOutcome signIn(const std::stop_token& stop,
                         const std::function<void(const QUrl&)>& showAddress = {});

    /// The stored token while it is valid for more than 60 seconds, else a refreshed one. All
    /// concurrent callers share one refresh, and one caller's `stop` leaves it to the others.
    QString validAccessToken(std::stop_token stop) override;

    /// Renewed by one refresh for all who hold the same refused token.
    std::optional<QString> renewedAccessToken(const QString& refused,
                                              std::stop_token stop) override;

    bool isSignedIn();

    /// The account's address, when it is known.
    std::optional<QString> email();

    /// Google's identifier of the account, which outlives a change of its address; none when
    /// nobody is signed in, or Google has not told yet (see `learnIdentity`).
    std::optional<QString> userID();

    /// Asks Google whose sign-in this is, unless that is known or nobody is signed in. A refusal is
    /// logged, and leaves it unknown. Throws what `validAccessToken` throws.
    void learnIdentity(const std::stop_token& stop);

    /// Revokes the access token, as far as Google can be reached, and forgets everything. Never
    /// throws; `stop` only shortens the wait for Google.
    void signOut(const std::stop_token& stop);

  private:
    struct RefreshTask {
        bool finished = false;
        std::optional<QString> token;
        std::exception_ptr error; ///< set when there is no token
    };
    /// Its lock also makes each change of the stored tokens one step. Held while the token store
    /// works, never while the network does.
    struct Refresh {
        std::shared_ptr<RefreshTask> task; ///< in flight
        std::jthread thread;
    };
    using Lock = Guarded<Refresh>::Lock;

    QUrl runAuthSession(const WebAuthRequest& request, const std::stop_token& stop);
    QString extractAuthCode(const QUrl& callback);
    SignInOutcome exchangeCode(const QString& code, const QString& verifier,
                               const QString& redirectURI, const std::stop_token& stop);
    SignInOutcome outcomeOf(const QByteArray& answer);
    void forget(const QStringList& keys);
    QString saveTokens(const QByteArray& body);
    void fetchAndSaveIdentity(const QString& accessToken, const std::stop_token& stop);
    void startRefresh(Refresh& refresh);
    QString refreshed(Lock& refresh, const std::stop_token& stop);
    void runRefresh(RefreshTask& task, const std::stop_token& stop);
    QString refreshAccessToken(const std::stop_token& stop);
    HttpResponse postForm(const QUrl& url, const QByteArray& form, const std::stop_token& stop);

    const Collaborators with_;

    std::condition_variable_any refreshFinished_;
    Guarded<Refresh> refresh_;
};

} // namespace quorvane
