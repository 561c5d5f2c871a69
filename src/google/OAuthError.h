#pragma once

#include "foundation/Error.h"

namespace quorvane {

/// A sign-in or token failure.
class OAuthError : public Error {
  public:
    enum class Case {
        tokenExchangeFailed,
        missingCode,
        notSignedIn,
        refreshFailed,
        invalidResponse,
        sessionStartFailed,
    };

    /// `payload` is the server's answer; only `tokenExchangeFailed` carries one.
    explicit OAuthError(Case which, const QString& payload = {});

    Case which() const noexcept { return which_; }

  private:
    Case which_;
};

} // namespace quorvane
