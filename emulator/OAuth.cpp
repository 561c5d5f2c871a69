#include "emulator/OAuth.h"

#include "foundation/Crypto.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr std::chrono::minutes codeLifetime{10};

Answer authorizationError(const QString& error, const QString& description) {
    return htmlAnswer("<!DOCTYPE html><html><head><title>Error 400 (" + error.toUtf8() +
                          ")</title></head><body><h1>Access blocked: Authorization Error</h1><p>" +
                          description.toHtmlEscaped().toUtf8() +
                          "</p><p>Error 400: " + error.toUtf8() + "</p></body></html>",
                      400);
}

Answer invalidRequest(const QString& description) {
    return oauthError(u"invalid_request"_s, description);
}

Answer invalidGrant(const QString& description) {
    return oauthError(u"invalid_grant"_s, description);
}

/// A client for desktops, which is the kind that has a secret, is called back at an address of the
/// person's own computer; others at a scheme, their client id with the parts in reverse order.
bool isRedirectOf(const QString& clientID, const QString& redirectURI, bool hasSecret) {
    const QUrl url(redirectURI);
    const bool isLoopback =
        url.scheme() == u"http" && url.host() == u"127.0.0.1" && url.port() > 0 && !url.hasQuery();
    QStringList parts = clientID.split(u'.');
    std::ranges::reverse(parts);
    return isLoopback ||
           (!hasSecret && redirectURI.startsWith(parts.join(u'.') + u":/"_s, Qt::CaseInsensitive));
}

/// Google ends the sessions of a client in testing after seven days.
std::optional<Date> expiryOf(const Behaviour& behaviour, Date now) {
    return behaviour.sessionLifetime.count() > 0 ? std::optional(now + behaviour.sessionLifetime)
                                                 : std::nullopt;
}

bool matches(const QString& text, const char* pattern) {
    return QRegularExpression(QRegularExpression::anchoredPattern(QString::fromLatin1(pattern)))
        .match(text)
        .hasMatch();
}

QString challengeOf(const QString& verifier) {
    return QString::fromLatin1(
        Sha256::digest(verifier.toUtf8())
            .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

/// What is wrong with an authorization request's parameters; none when nothing is.
std::optional<Answer> refusal(const Call& call, const Behaviour& behaviour) {
    const QString invalid = u"invalid_request"_s;
    const QUrlQuery query = call.query();
    for (const char* name : {"client_id", "redirect_uri", "response_type", "scope"}) {
        if (formItem(query, QString::fromLatin1(name)).isEmpty())
            return authorizationError(invalid, u"Required parameter is missing: "_s +
                                                   QString::fromLatin1(name));
    }
    const auto item = [&](const char* name) { return formItem(query, QString::fromLatin1(name)); };
    if (!isRedirectOf(item("client_id"), item("redirect_uri"), !behaviour.clientSecret.isEmpty()))
        return authorizationError(u"redirect_uri_mismatch"_s,
                                  u"Invalid parameter value for redirect_uri"_s);
    if (item("response_type") != u"code"_s)
        return authorizationError(u"unsupported_response_type"_s, u"Invalid response_type"_s);
    if (!allScopes().contains(scopesFrom(item("scope"))))
        return authorizationError(u"invalid_scope"_s, u"Some requested scopes were invalid."_s);
    if (item("code_challenge_method") != u"S256"_s ||
        !matches(item("code_challenge"), "[A-Za-z0-9_-]{43}"))
        return authorizationError(invalid, u"Invalid code challenge"_s);
    return std::nullopt;
}

} // namespace

Answer OAuth::authorize(const Call& call, const Behaviour& behaviour, Date now) {
    if (auto refused = refusal(call, behaviour))
        return *refused;
    const auto item = [&](const char* name) { return call.queryItem(QString::fromLatin1(name)); };
    const QString redirectURI = item("redirect_uri");
    QByteArray location = redirectURI.toUtf8() + "?";
    if (const QString state = item("state"); !state.isEmpty())
        location += "state=" + QUrl::toPercentEncoding(state) + "&";
    if (behaviour.consentDenied)
        return {.status = 302, .headers = {{"Location", location + "error=access_denied"}}};

    const QString code = u"4/0A"_s + opaqueText(36);
    const Scopes granted = scopesFrom(item("scope")) - scopesFrom(behaviour.declinedScopes);
    std::erase_if(codes_, [&](const auto& entry) { return entry.second.expiry <= now; });
    codes_.insert_or_assign(code, Code{.clientID = item("client_id"),
                                       .redirectURI = redirectURI,
                                       .challenge = item("code_challenge"),
                                       .consent = {behaviour.person, granted},
                                       .isOffline = item("access_type") == u"offline"_s,
                                       .expiry = now + codeLifetime});
    location += "code=" + QUrl::toPercentEncoding(code) +
                "&scope=" + QUrl::toPercentEncoding(textOf(granted));
    return {.status = 302, .headers = {{"Location", location}}};
}

Answer OAuth::exchange(const Call& call, const Behaviour& behaviour, Date now) {
    if (call.contentType() != "application/x-www-form-urlencoded")
        return invalidRequest(u"The request body must be form-encoded."_s);
    const QUrlQuery form = parseForm(call.request.body);
    if (formItem(form, u"client_id"_s).isEmpty())
        return invalidRequest(u"Could not determine client ID from request."_s);
    if (!behaviour.clientSecret.isEmpty() &&
        formItem(form, u"client_secret"_s) != behaviour.clientSecret)
        return oauthError(u"invalid_client"_s, u"The provided client secret is invalid."_s, 401);
    const QString grantType = formItem(form, u"grant_type"_s);
    if (grantType == u"authorization_code"_s)
        return redeemCode(form, behaviour, now);
    if (grantType == u"refresh_token"_s)
        return refresh(form, behaviour, now);
    if (grantType.isEmpty())
        return invalidRequest(u"Missing required parameter: grant_type"_s);
    return oauthError(u"unsupported_grant_type"_s, u"Invalid grant_type: "_s + grantType);
}

Answer OAuth::redeemCode(const QUrlQuery& form, const Behaviour& behaviour, Date now) {
    for (const char* name : {"code", "redirect_uri", "code_verifier"}) {
        if (formItem(form, QString::fromLatin1(name)).isEmpty())
            return invalidRequest(u"Missing required parameter: "_s + QString::fromLatin1(name));
    }
    const auto item = [&](const char* name) { return formItem(form, QString::fromLatin1(name)); };
    const auto node = codes_.extract(item("code")); // whatever comes of it, a code is used up
    if (node.empty() || node.mapped().expiry <= now)
        return invalidGrant(u"Malformed auth code."_s);
    const Code& code = node.mapped();
    if (code.redirectURI != item("redirect_uri"))
        return oauthError(u"redirect_uri_mismatch"_s, u"Bad Request"_s);
    if (code.clientID != item("client_id"))
        return oauthError(u"unauthorized_client"_s, u"Unauthorized"_s, 401);
    const QString verifier = item("code_verifier");
    if (!matches(verifier, "[A-Za-z0-9._~-]{43,128}") || challengeOf(verifier) != code.challenge)
        return invalidGrant(u"Invalid code verifier."_s);

    const auto lifetime = behaviour.tokenLifetime;
    const QString refreshToken =
        code.isOffline ? tokens_.addGrant({code.clientID, code.consent, expiryOf(behaviour, now)})
                       : QString();
    QJsonObject answer{
        {u"access_token"_s, tokens_.addAccess({now + lifetime - behaviour.tokenShortfall,
                                               code.consent, refreshToken})},
        {u"expires_in"_s, static_cast<qint64>(lifetime.count())},
        {u"scope"_s, textOf(code.consent.scopes)},
        {u"token_type"_s, u"Bearer"_s},
    };
    if (code.isOffline)
        answer.insert(u"refresh_token"_s, refreshToken);
    return jsonAnswer(answer);
}

Answer OAuth::refresh(const QUrlQuery& form, const Behaviour& behaviour, Date now) {
    const QString refreshToken = formItem(form, u"refresh_token"_s);
    if (refreshToken.isEmpty())
        return invalidRequest(u"Missing required parameter: refresh_token"_s);
    const Tokens::Grant* grant = tokens_.grant(refreshToken);
    if (!grant || (grant->expiry && *grant->expiry <= now))
        return invalidGrant(u"Token has been expired or revoked."_s);
    if (!grant->clientID.isEmpty() && grant->clientID != formItem(form, u"client_id"_s))
        return oauthError(u"unauthorized_client"_s, u"Unauthorized"_s, 401);
    const auto lifetime = behaviour.tokenLifetime;
    QJsonObject answer{
        {u"access_token"_s, tokens_.addAccess({now + lifetime - behaviour.tokenShortfall,
                                               grant->consent, refreshToken})},
        {u"expires_in"_s, static_cast<qint64>(lifetime.count())},
        {u"scope"_s, textOf(grant->consent.scopes)},
        {u"token_type"_s, u"Bearer"_s},
    };
    if (grant->expiry)
        answer.insert(
            u"refresh_token_expires_in"_s,
            qint64(std::chrono::duration_cast<std::chrono::seconds>(*grant->expiry - now).count()));
    return jsonAnswer(answer);
}

Answer OAuth::revoke(const Call& call) {
    QString token = call.queryItem(u"token"_s);
    if (token.isEmpty() && call.contentType() == "application/x-www-form-urlencoded")
        token = formItem(parseForm(call.request.body), u"token"_s);
    if (token.isEmpty())
        return invalidRequest(u"Missing required parameter: token"_s);
    if (!tokens_.revoke(token))
        return oauthError(u"invalid_token"_s, u"Token expired or revoked"_s);
    return jsonAnswer({});
}

Answer OAuth::userInfo(const Call& call, Date now) const {
    const Tokens::Access* access = tokens_.access(call.bearer(), now);
    if (!access || !access->consent.scopes.contains(emailScope))
        return apiError(401, u"Request is missing required authentication credential."_s);
    return jsonAnswer({
        {u"id"_s, access->consent.person.id},
        {u"email"_s, access->consent.person.email},
        {u"verified_email"_s, true},
    });
}

TokenPair OAuth::issue(const Scopes& scopes, const Behaviour& behaviour, Date now) {
    const Tokens::Consent consent{behaviour.person, scopes};
    const QString refreshToken = tokens_.addGrant({{}, consent, expiryOf(behaviour, now)});
    const Tokens::Access access{now + behaviour.tokenLifetime - behaviour.tokenShortfall, consent,
                                refreshToken};
    return {.accessToken = tokens_.addAccess(access), .refreshToken = refreshToken};
}

} // namespace quorvane::emulator
