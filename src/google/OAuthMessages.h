#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QUrl>

#include <optional>
#include <utility>
#include <vector>

/// The texts of the OAuth exchange: URLs, forms and answers. Pure functions.
namespace quorvane::oauth {

/// "a.b.c" as "c.b.a": the URL scheme of an installed application's callback.
QString reversedClientID(const QString& clientID);

/// Where the authorization page sends the user back to.
QString redirectURI(const QString& clientID);

/// The authorization page (RFC 6749, section 4.1.1; RFC 7636, section 4.3).
QUrl authorizationURL(const QUrl& endpoint, const QString& clientID, const QString& redirectURI,
                      const QString& challenge, const QString& state);

/// UTF-8, with everything but ASCII letters, digits and "-._~" as %XX.
QByteArray percentEncode(const QString& text);

using FormFields = std::vector<std::pair<QByteArray, QString>>;

/// An application/x-www-form-urlencoded body, in the order of the fields.
QByteArray formBody(const FormFields& fields);

/// The authorization code that a callback URL carries, decoded; none when there is no such thing.
std::optional<QString> authCode(const QUrl& callback);

/// Answers with a code, and refusals with an error, end a sign-in; other URLs are stray.
bool isAnswer(const QUrl& callback);

/// What a token answer says was granted; without a word on it, all that was asked for (RFC 6749,
/// section 5.1).
struct Grant {
    bool uploading = true;
    bool reading = true; ///< of what this client created
};
Grant grantIn(const QByteArray& answer);

/// What a person is told, once, who left out reading.
inline const QString readingDeclined = QStringLiteral(
    "Albümleri görme izni verilmedi: yükleme çalışır, albüm listesinde yalnız bilinen albümler "
    "görünür");

/// The person's identifier in a user-info answer: Google's "id", or "sub" as OpenID Connect Core
/// names it. Empty when there is none.
QString userID(const QJsonObject& person);

/// A server's answer as text that may be logged: the values of token members are masked.
QString loggable(const QByteArray& body);

} // namespace quorvane::oauth
