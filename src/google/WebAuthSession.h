#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <stop_token>

namespace quorvane {

/// Shows the authorization page to the user and brings back where it sent them: the system's
/// sign-in sheet, or the system's browser.
class WebAuthSession {
  public:
    virtual ~WebAuthSession() = default;

    /// Blocks until the page redirects to a URL of `callbackScheme`, and returns that URL.
    /// `started` is called once, with whether the page could be shown; after false the call throws
    /// `OAuthError` (sessionStartFailed). An abandoned or overtaken session throws an `Error`, a
    /// request to `stop` throws `Cancelled`.
    virtual QUrl authenticate(const QUrl& url, const QString& callbackScheme,
                              const std::function<void(bool)>& started, std::stop_token stop) = 0;
};

} // namespace quorvane
