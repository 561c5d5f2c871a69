#pragma once

#include "google/GoogleOAuthManager.h"
#include "google/OAuthError.h"
#include "google/WebAuthSession.h"

namespace quorvane::cli {

/// For commands that never ask anybody to sign in.
class NoAuthSession final : public WebAuthSession {
  public:
    QUrl authenticate(const WebAuthRequest&, const std::function<void(bool)>& started,
                      std::stop_token) override {
        started(false);
        throw OAuthError(OAuthError::Case::sessionStartFailed);
    }
};

/// Throws `OAuthError` (notSignedIn).
inline void requireSignedIn(GoogleOAuthManager& oauth) {
    if (!oauth.isSignedIn())
        throw OAuthError(OAuthError::Case::notSignedIn);
}

} // namespace quorvane::cli
