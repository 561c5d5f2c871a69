#include "google/GoogleFaults.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

#include <algorithm>

namespace quorvane {

namespace {

constexpr qsizetype longestReason = 300;

// google.rpc.Code
constexpr int invalidArgument = 3;
constexpr int resourceExhausted = 8;
constexpr int unauthenticated = 16;
constexpr int passing[] = {1, 2, 4, 10, 13, 14}; // cancelled to unavailable: may do next time

/// On one line, without what a terminal would obey and without the full stop: it is told inside of
/// sentences.
QString reasonFrom(const QString& text) {
    QString plain = text.simplified();
    plain.removeIf([](QChar character) { return !character.isPrint(); });
    if (plain.endsWith(u'.'))
        plain.chop(1);
    return plain.left(longestReason);
}

/// An error of Google's APIs. The words that identify it are in lower case, without separators:
/// "per day" and "PerDay" are the same limit.
struct ApiError {
    QString message;
    QStringList words; ///< of the message first, then of the reasons and the limits that were met

    bool says(std::initializer_list<const char*> any) const {
        return std::ranges::any_of(any, [&](const char* word) {
            return std::ranges::any_of(
                words, [&](const QString& each) { return each.contains(QLatin1String(word)); });
        });
    }
    bool isAbout(const char* thing) const { return words.front().contains(QLatin1String(thing)); }
};

QString wordsIn(const QString& text) {
    QString words = text.toLower();
    words.removeIf([](QChar character) { return !character.isLetterOrNumber(); });
    return words;
}

void addTexts(QStringList& words, const QJsonObject& object) {
    for (const QJsonValue value : object)
        if (value.isString())
            words.append(wordsIn(value.toString()));
}

ApiError apiErrorFrom(const QJsonObject& status) {
    const QString message = status[u"message"].toString();
    ApiError error{.message = reasonFrom(message), .words = {wordsIn(message)}};
    addTexts(error.words, status);
    for (const QLatin1String list : {QLatin1String("details"), QLatin1String("errors")})
        for (const auto& value : status[list].toArray()) {
            const QJsonObject detail = value.toObject();
            addTexts(error.words, detail);
            addTexts(error.words, detail[u"metadata"].toObject());
            for (const auto& violation : detail[u"violations"].toArray())
                addTexts(error.words, violation.toObject());
        }
    return error;
}

/// An error of Google's APIs, or a sentence, as uploads are answered. None for anything else: a
/// page was written by somebody between us and the service.
std::optional<ApiError> apiErrorIn(const HttpResponse& response) {
    const QJsonValue error = QJsonDocument::fromJson(response.body).object()[u"error"];
    if (error.isObject())
        return apiErrorFrom(error.toObject());
    const QByteArray body = response.body.trimmed();
    if (body.isEmpty() || body.startsWith('<') || body.startsWith('{'))
        return std::nullopt;
    return apiErrorFrom({{QStringLiteral("message"), QString::fromUtf8(body.left(longestReason))}});
}

bool tellsFullAlbum(const ApiError& error) {
    return error.says({"errphotoperalbumlimit", "maximumnumberofphotosinanalbum"});
}

bool tellsFullStorage(const ApiError& error) {
    return error.isAbout("storage");
}

FaultCode quotaCode(const ApiError& error) {
    return error.says({"perday", "dailylimit"}) ? FaultCode::dailyQuota : FaultCode::rateLimited;
}

FaultCode forbiddenCode(const ApiError& error) {
    if (error.says({"dailylimitexceeded", "ratelimitexceeded"}))
        return quotaCode(error);
    if (error.says({"servicedisabled", "accessnotconfigured"}))
        return FaultCode::serviceDisabled;
    if (error.says({"insufficientauthenticationscopes", "scopeinsufficient"}))
        return FaultCode::permissionMissing;
    return FaultCode::accessDenied;
}

/// Of a status between 400 and 499.
FaultCode refusalCode(int status, const ApiError& error, bool intoAlbum) {
    if (tellsFullAlbum(error))
        return FaultCode::albumFull;
    if (tellsFullStorage(error))
        return FaultCode::storageFull;
    if (status == 429)
        return quotaCode(error);
    if (intoAlbum && (status == 404 || error.isAbout("album")))
        return FaultCode::albumGone;
    if (status == 403)
        return forbiddenCode(error);
    return FaultCode::itemRefused;
}

FaultCode codeOf(int status, const std::optional<ApiError>& error, bool intoAlbum) {
    switch (status) {
    case 401:
        return FaultCode::sessionEnded;
    case 408:
        return FaultCode::serviceBusy;
    case 413:
        return FaultCode::tooLarge;
    default:
        break;
    }
    if (status >= 400 && status < 500 && error)
        return refusalCode(status, *error, intoAlbum);
    return status == 429 ? FaultCode::rateLimited : FaultCode::serviceBusy;
}

} // namespace

Fault faultIn(const HttpResponse& response, bool intoAlbum) {
    const std::optional<ApiError> error = apiErrorIn(response);
    return {.code = codeOf(response.status, error, intoAlbum),
            .retryAfter = response.retryAfter,
            .reason = error ? error->message : QString()};
}

Fault itemFaultIn(const QJsonObject& status) {
    const ApiError error = apiErrorFrom(status);
    const int code = status[u"code"].toInt();
    Fault fault{.code = FaultCode::itemRefused, .reason = error.message};
    if (tellsFullAlbum(error))
        fault.code = FaultCode::albumFull;
    else if (tellsFullStorage(error))
        fault.code = FaultCode::storageFull;
    else if (code == resourceExhausted)
        fault.code = quotaCode(error);
    else if (code == invalidArgument && error.isAbout("uploadtoken"))
        fault.code = FaultCode::tokenRefused;
    else if (code == unauthenticated)
        fault.code = FaultCode::sessionEnded;
    else if (std::ranges::find(passing, code) != std::end(passing))
        fault.code = FaultCode::serviceBusy;
    return fault;
}

Fault tokenFaultIn(const HttpResponse& response) {
    const QJsonObject answer = QJsonDocument::fromJson(response.body).object();
    const QString error = answer[u"error"].toString();
    Fault fault{.code = codeOf(response.status, std::nullopt, false),
                .retryAfter = response.retryAfter,
                .reason = reasonFrom(answer[u"error_description"].toString(error))};
    if (error == u"invalid_grant")
        fault.code = FaultCode::sessionEnded;
    else if (!error.isEmpty() && (response.status == 400 || response.status == 401))
        fault.code = FaultCode::accessDenied; // the client, not the person, is refused
    return fault;
}

Fault foreignAnswer() {
    return {.code = FaultCode::serviceBusy};
}

} // namespace quorvane
