#pragma once

#include "foundation/Date.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace quorvane::emulator {

/// What the service says to one request.
struct Answer {
    int status = 200;
    QByteArray contentType = {};
    QByteArray body = {};
    std::vector<std::pair<QByteArray, QByteArray>> headers = {}; ///< beside the usual ones
    std::optional<Date> date = {};                               ///< by the service's clock
};

Answer jsonAnswer(const QJsonObject& object, int status = 200);
Answer textAnswer(const QByteArray& text, int status = 200);
Answer htmlAnswer(const QByteArray& html, int status);

/// The error shape of Google's APIs: {"error": {"code", "message", "status", "details"}}, where
/// `status` is the name that google.rpc.Code gives to the HTTP status, such as "INVALID_ARGUMENT",
/// and the details hold the reason of a google.rpc.ErrorInfo, if there is one.
Answer apiError(int status, const QString& message, const QString& reason = {});
Answer invalidArgument(const QString& message);

/// The error shape of RFC 6749 5.2: {"error", "error_description"}.
Answer oauthError(const QString& error, const QString& description, int status = 400);

} // namespace quorvane::emulator
