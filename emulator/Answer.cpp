#include "emulator/Answer.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

Answer jsonAnswer(const QJsonObject& object, int status) {
    return {.status = status,
            .contentType = "application/json; charset=UTF-8",
            .body = QJsonDocument(object).toJson(),
            .location = {}};
}

Answer textAnswer(const QByteArray& text, int status) {
    return {.status = status, .contentType = "text/plain", .body = text, .location = {}};
}

Answer htmlAnswer(const QByteArray& html, int status) {
    return {
        .status = status, .contentType = "text/html; charset=UTF-8", .body = html, .location = {}};
}

Answer apiError(int status, const QString& name, const QString& message) {
    const QJsonObject error{{u"code"_s, status}, {u"message"_s, message}, {u"status"_s, name}};
    return jsonAnswer({{u"error"_s, error}}, status);
}

Answer invalidArgument(const QString& message) {
    return apiError(400, u"INVALID_ARGUMENT"_s, message);
}

Answer oauthError(const QString& error, const QString& description, int status) {
    return jsonAnswer({{u"error"_s, error}, {u"error_description"_s, description}}, status);
}

} // namespace quorvane::emulator
