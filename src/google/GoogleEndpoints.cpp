#include "google/GoogleEndpoints.h"

#include "foundation/Error.h"

namespace quorvane {

namespace {

QUrl at(const QUrl& base, const QString& path) {
    QUrl url = base;
    url.setPath(path);
    return url;
}

} // namespace

bool isLoopbackHost(const QString& host) {
    return host == u"127.0.0.1" || host == u"localhost" || host == u"::1";
}

QUrl GoogleEndpoints::library(const QString& path) const {
    return at(libraryBase, path);
}

GoogleEndpoints GoogleEndpoints::resolve(const std::optional<QString>& baseURL) {
    if (!baseURL || baseURL->isEmpty())
        return {QUrl(QStringLiteral("https://accounts.google.com/o/oauth2/v2/auth")),
                QUrl(QStringLiteral("https://oauth2.googleapis.com/token")),
                QUrl(QStringLiteral("https://oauth2.googleapis.com/revoke")),
                QUrl(QStringLiteral("https://www.googleapis.com/oauth2/v2/userinfo")),
                QUrl(QStringLiteral("https://photoslibrary.googleapis.com"))};
    const QUrl base(*baseURL, QUrl::StrictMode);
    if (!base.isValid() || base.scheme() != u"http" || !isLoopbackHost(base.host()) ||
        !base.userInfo().isEmpty() || (!base.path().isEmpty() && base.path() != u"/") ||
        base.hasQuery() || base.hasFragment())
        throw Error(QStringLiteral("QUORVANE_GOOGLE_BASE_URL yalnızca bu bilgisayarı gösterebilir "
                                   "(http://127.0.0.1:port): ") +
                    *baseURL);
    return {at(base, QStringLiteral("/o/oauth2/v2/auth")), at(base, QStringLiteral("/token")),
            at(base, QStringLiteral("/revoke")), at(base, QStringLiteral("/oauth2/v2/userinfo")),
            at(base, QString())};
}

} // namespace quorvane
