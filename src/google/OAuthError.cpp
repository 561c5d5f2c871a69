#include "google/OAuthError.h"

namespace quorvane {

namespace {

QString textOf(OAuthError::Case which) {
    switch (which) {
    case OAuthError::Case::tokenExchangeFailed:
        return QStringLiteral("OAuth: Token takasi basarisiz -> ");
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

OAuthError::OAuthError(Case which, const QString& text, std::optional<Fault> fault)
    : Error(text, std::move(fault)), which_(which) {}

OAuthError::OAuthError(Case which, std::optional<Fault> fault)
    : OAuthError(which, textOf(which),
                 which == Case::notSignedIn ? Fault{.code = FaultCode::sessionEnded}
                                            : std::move(fault)) {}

OAuthError OAuthError::tokenExchangeFailed(const QString& payload, const Fault& fault) {
    const Case which = Case::tokenExchangeFailed;
    return {which, textOf(which) + payload, fault};
}

} // namespace quorvane
