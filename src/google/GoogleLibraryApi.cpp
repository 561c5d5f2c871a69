#include "google/GoogleLibraryApi.h"

namespace quorvane {

GoogleLibraryApi::GoogleLibraryApi(HttpClient& http, AccessTokenProvider& tokens,
                                   const GoogleEndpoints& endpoints)
    : http_(http), tokens_(tokens), endpoints_(endpoints) {}

HttpResponse GoogleLibraryApi::send(HttpRequest request, const std::stop_token& stop) {
    const QString token = tokens_.validAccessToken(stop);
    request.headers.insert(request.headers.begin(), bearerHeader(token));
    HttpResponse response = http_.send(request, stop);
    if (response.status != 401)
        return response;
    const std::optional<QString> renewed = tokens_.renewedAccessToken(token, stop);
    if (!renewed)
        return response;
    request.headers.front() = bearerHeader(*renewed);
    return http_.send(request, stop);
}

} // namespace quorvane
