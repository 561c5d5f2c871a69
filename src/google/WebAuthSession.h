#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <stop_token>

namespace quorvane {

/// A page to show, and how it is to lead back.
struct WebAuthRequest {
    QString schemeURI;            ///< leads back by a scheme that is this program's own
    bool prefersLoopback = false; ///< an address of this computer is to lead back (RFC 8252, 7.3)
    QString state;                ///< what the callback carries back
    bool isAddressShown = false;  ///< the person sees the page's address, browser or not
    /// The page that leads back to `redirectURI`. Called once, before anything is shown.
    std::function<QUrl(const QString& redirectURI)> page;
};

/// Shows the authorization page to the user and brings back where it sent them: the system's
/// sign-in sheet, or the system's browser.
class WebAuthSession {
  public:
    virtual ~WebAuthSession() = default;

    /// Blocks until the page redirects to the URI that it was made for, and returns that URL.
    /// `started` is called once, with whether the page could be shown; after false the call throws
    /// `OAuthError` (sessionStartFailed). An abandoned or overtaken session throws an `Error`, a
    /// request to `stop` throws `Cancelled`.
    virtual QUrl authenticate(const WebAuthRequest& request,
                              const std::function<void(bool)>& started, std::stop_token stop) = 0;
};

} // namespace quorvane
