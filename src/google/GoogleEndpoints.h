#pragma once

#include <QUrl>

#include <optional>

namespace quorvane {

/// Where Google is.
struct GoogleEndpoints {
    QUrl authorization; ///< path /o/oauth2/v2/auth
    QUrl token;         ///< path /token
    QUrl revocation;    ///< path /revoke
    QUrl userInfo;      ///< path /oauth2/v2/userinfo
    QUrl libraryBase;   ///< the Library API without a path

    QUrl library(const QString& path) const;

    /// Google itself, or all of it at `baseURL` when one is given (QUORVANE_GOOGLE_BASE_URL). Only
    /// a loopback address over plain HTTP is accepted, so that nobody can be led to send tokens
    /// elsewhere; anything else throws `Error`.
    static GoogleEndpoints resolve(const std::optional<QString>& baseURL);
};

/// True for the names and addresses of this computer itself.
bool isLoopbackHost(const QString& host);

/// The OAuth client that the product signs in as.
class OAuthClientIdentity {
  public:
    virtual ~OAuthClientIdentity() = default;
    virtual QString googleClientID() const = 0;
    virtual std::optional<QString> googleClientSecret() const = 0;
    /// Whether the client is one that is called back at an address of this computer.
    virtual bool redirectsToLoopback() const = 0;
};

} // namespace quorvane
