#include "emulator/Answer.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

QString canonicalName(int status) {
    switch (status) {
    case 400:
        return u"INVALID_ARGUMENT"_s;
    case 401:
        return u"UNAUTHENTICATED"_s;
    case 403:
        return u"PERMISSION_DENIED"_s;
    case 404:
        return u"NOT_FOUND"_s;
    case 409:
        return u"ABORTED"_s;
    case 429:
        return u"RESOURCE_EXHAUSTED"_s;
    case 500:
        return u"INTERNAL"_s;
    case 501:
        return u"UNIMPLEMENTED"_s;
    case 503:
        return u"UNAVAILABLE"_s;
    case 504:
        return u"DEADLINE_EXCEEDED"_s;
    default:
        return u"UNKNOWN"_s;
    }
}

} // namespace

Answer jsonAnswer(const QJsonObject& object, int status) {
    return {.status = status,
            .contentType = "application/json; charset=UTF-8",
            .body = QJsonDocument(object).toJson()};
}

Answer textAnswer(const QByteArray& text, int status) {
    return {.status = status, .contentType = "text/plain", .body = text};
}

Answer htmlAnswer(const QByteArray& html, int status) {
    return {.status = status, .contentType = "text/html; charset=UTF-8", .body = html};
}

Answer apiError(int status, const QString& message, const QString& reason) {
    QJsonObject error{
        {u"code"_s, status}, {u"message"_s, message}, {u"status"_s, canonicalName(status)}};
    if (!reason.isEmpty())
        error.insert(u"details"_s, QJsonArray{QJsonObject{
                                       {u"@type"_s, u"type.googleapis.com/google.rpc.ErrorInfo"_s},
                                       {u"reason"_s, reason},
                                       {u"domain"_s, u"googleapis.com"_s}}});
    return jsonAnswer({{u"error"_s, error}}, status);
}

Answer invalidArgument(const QString& message) {
    return apiError(400, message);
}

Answer oauthError(const QString& error, const QString& description, int status) {
    return jsonAnswer({{u"error"_s, error}, {u"error_description"_s, description}}, status);
}

} // namespace quorvane::emulator
