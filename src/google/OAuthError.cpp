#include "google/OAuthError.h"

namespace quorvane {

namespace {

QString textOf(OAuthError::Case which, const QString& payload) {
    switch (which) {
    case OAuthError::Case::tokenExchangeFailed:
        return QStringLiteral("OAuth: Token takasi basarisiz -> ") + payload;
    case OAuthError::Case::missingCode:
        return QStringLiteral("OAuth: auth code alinamadi");
    case OAuthError::Case::notSignedIn:
        return QStringLiteral("OAuth: kullanici giris yapmamis");
    case OAuthError::Case::refreshFailed:
        return QStringLiteral("OAuth: token yenileme basarisiz");
    case OAuthError::Case::invalidResponse:
        return QStringLiteral("OAuth: gecersiz yanit");
    case OAuthError::Case::sessionStartFailed:
        return QStringLiteral("OAuth: Giris oturumu baslatilamadi");
    }
    return {};
}

} // namespace

OAuthError::OAuthError(Case which, const QString& payload)
    : Error(textOf(which, payload)), which_(which) {}

} // namespace quorvane
