#pragma once

#include "foundation/Error.h"

namespace quorvane {

/// A sign-in or token failure.
class OAuthError : public Error {
  public:
    enum class Case {
        tokenExchangeFailed, ///< carries the server's answer
        missingCode,
        notSignedIn,
        refreshFailed,
        invalidResponse,
        sessionStartFailed,
    };

    explicit OAuthError(Case which, std::optional<Fault> fault = {});

    /// `payload` is the server's answer.
    static OAuthError tokenExchangeFailed(const QString& payload, const Fault& fault);

    Case which() const noexcept { return which_; }

  private:
    OAuthError(Case which, const QString& text, std::optional<Fault> fault);

    Case which_;
};

} // namespace quorvane
