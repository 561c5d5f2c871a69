#include "google/OAuthMessages.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QStringList>
#include <QUrlQuery>

#include <algorithm>

namespace quorvane::oauth {

namespace {

const QStringList scopes = {
    QStringLiteral("https://www.googleapis.com/auth/photoslibrary.appendonly"),
    QStringLiteral("https://www.googleapis.com/auth/photoslibrary.readonly"),
    QStringLiteral("https://www.googleapis.com/auth/photoslibrary.readonly.appcreateddata"),
    QStringLiteral("https://www.googleapis.com/auth/userinfo.email"),
};

QString percentDecoded(const QString& text) {
    return QUrl::fromPercentEncoding(text.toUtf8());
}

QString codeItem(const QUrl& url) {
    return QUrlQuery(url).queryItemValue(QStringLiteral("code"), QUrl::FullyDecoded);
}

QString codePiece(const QString& query) {
    for (const QString& piece : query.split(u'&')) {
        const QStringList parts = piece.split(u'=');
        if (parts.size() >= 2 && parts[0] == u"code")
            return percentDecoded(parts[1]);
    }
    return {};
}

QString codeMatch(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral("[?&]code=([^&]+)"));
    return percentDecoded(pattern.match(text).captured(1));
}

} // namespace

QString reversedClientID(const QString& clientID) {
    QStringList parts = clientID.split(u'.');
    std::reverse(parts.begin(), parts.end());
    return parts.join(u'.');
}

QString redirectURI(const QString& clientID) {
    return reversedClientID(clientID) + QStringLiteral(":/oauth2redirect");
}

QUrl authorizationURL(const QUrl& endpoint, const QString& clientID, const QString& redirectURI,
                      const QString& challenge, const QString& state) {
    QUrlQuery query;
    query.setQueryItems({
        {QStringLiteral("client_id"), clientID},
        {QStringLiteral("redirect_uri"), redirectURI},
        {QStringLiteral("response_type"), QStringLiteral("code")},
        {QStringLiteral("scope"), scopes.join(u' ')},
        {QStringLiteral("code_challenge"), challenge},
        {QStringLiteral("code_challenge_method"), QStringLiteral("S256")},
        {QStringLiteral("state"), state},
        {QStringLiteral("access_type"), QStringLiteral("offline")},
        {QStringLiteral("prompt"), QStringLiteral("consent")},
    });
    QUrl url = endpoint;
    url.setQuery(query);
    return url;
}

QByteArray percentEncode(const QString& text) {
    return text.toUtf8().toPercentEncoding();
}

QByteArray formBody(const FormFields& fields) {
    QByteArrayList pairs;
    for (const auto& [name, value] : fields)
        pairs.append(name + '=' + percentEncode(value));
    return pairs.join('&');
}

std::optional<QString> authCode(const QUrl& callback) {
    const QString text = callback.toString(QUrl::FullyEncoded);
    // The later ways serve callbacks that are not quite URLs, such as one without its "?".
    for (const QString& code : {codeItem(callback), codeItem(QUrl(text)),
                                codePiece(callback.query(QUrl::FullyEncoded)), codeMatch(text)}) {
        if (!code.isEmpty())
            return code;
    }
    return std::nullopt;
}

bool isAnswer(const QUrl& callback) {
    return authCode(callback) || QUrlQuery(callback).hasQueryItem(QStringLiteral("error"));
}

Grant grantIn(const QByteArray& answer) {
    const QJsonValue scope = QJsonDocument::fromJson(answer).object().value(u"scope");
    if (!scope.isString())
        return {};
    const QStringList granted = scope.toString().split(u' ', Qt::SkipEmptyParts);
    return {.uploading = granted.contains(scopes[0]),
            .reading = granted.contains(scopes[1]) || granted.contains(scopes[2])};
}

QString userID(const QJsonObject& person) {
    return person.value(person.contains(u"id") ? u"id" : u"sub").toString();
}

QString loggable(const QByteArray& body) {
    QStringDecoder decode(QStringDecoder::Utf8);
    QString text = decode(body);
    if (decode.hasError())
        return QStringLiteral("Bilinmeyen yanıt");
    // The closing quote is missing from an answer that was cut.
    static const QRegularExpression token(
        QStringLiteral(R"re("((?:access|refresh|id)_token)"\s*:\s*"(?:[^"\\]|\\.)*"?)re"));
    return text.replace(token, QStringLiteral(R"("\1":"***")")).simplified();
}

} // namespace quorvane::oauth
