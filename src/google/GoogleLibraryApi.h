#pragma once

#include "google/AccessTokenProvider.h"
#include "google/GoogleEndpoints.h"
#include "google/HttpClient.h"

namespace quorvane {

inline const QString albumsPath = QStringLiteral("/v1/albums");

/// The one way to the Photos Library API: every request goes out signed in. Any thread; blocks its
/// caller.
class GoogleLibraryApi {
  public:
    GoogleLibraryApi(HttpClient& http, AccessTokenProvider& tokens,
                     const GoogleEndpoints& endpoints);

    /// Where `path` ("/v1/albums") is.
    QUrl at(const QString& path) const { return endpoints_.library(path); }

    /// Throws the token provider's errors when no request could be signed in.
    void requireSession(const std::stop_token& stop) { tokens_.validAccessToken(stop); }

    /// Sends `request` with the bearer token before its headers. A token that Google does not take
    /// any more (401) is renewed and the request repeated, once. Throws `TransportError`, the token
    /// provider's errors, or `Cancelled`.
    HttpResponse send(HttpRequest request, const std::stop_token& stop);

  private:
    HttpClient& http_;
    AccessTokenProvider& tokens_;
    const GoogleEndpoints endpoints_;
};

} // namespace quorvane
