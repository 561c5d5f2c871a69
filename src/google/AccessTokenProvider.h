#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <stop_token>
#include <utility>

namespace quorvane {

/// The one way every Google call obtains its bearer token. Any thread; may block on the network.
/// Both operations throw `OAuthError`, `TransportError`, or `Cancelled`.
class AccessTokenProvider {
  public:
    virtual ~AccessTokenProvider() = default;

    /// A usable access token, as far as its expiry tells.
    virtual QString validAccessToken(std::stop_token stop) = 0;

    /// The token to use instead of `refused`, which Google does not take although its time is not
    /// over. None when there is nothing to renew it with.
    virtual std::optional<QString> renewedAccessToken(const QString& refused,
                                                      std::stop_token stop) = 0;
};

/// The header that carries an access token (RFC 6750, section 2.1).
inline std::pair<QByteArray, QByteArray> bearerHeader(const QString& accessToken) {
    return {"Authorization", "Bearer " + accessToken.toUtf8()};
}

} // namespace quorvane
