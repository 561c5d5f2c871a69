#pragma once

#include <QString>

#include <stop_token>

namespace quorvane {

/// The one way every Google call obtains its bearer token.
class AccessTokenProvider {
  public:
    virtual ~AccessTokenProvider() = default;

    /// A usable access token. Any thread; may block on the network. Throws `OAuthError`,
    /// `TransportError`, or `Cancelled`.
    virtual QString validAccessToken(std::stop_token stop) = 0;
};

} // namespace quorvane
