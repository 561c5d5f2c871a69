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
    QByteArray location = {};      ///< of a redirection
    std::optional<Date> date = {}; ///< by the service's clock
};

Answer jsonAnswer(const QJsonObject& object, int status = 200);
Answer textAnswer(const QByteArray& text, int status = 200);
Answer htmlAnswer(const QByteArray& html, int status);

/// The error shape of Google's APIs: {"error": {"code", "message", "status"}}, where the last is
/// the name that google.rpc.Code gives to the HTTP status, such as "INVALID_ARGUMENT".
Answer apiError(int status, const QString& message);
Answer invalidArgument(const QString& message);

/// The error shape of RFC 6749 5.2: {"error", "error_description"}.
Answer oauthError(const QString& error, const QString& description, int status = 400);

} // namespace quorvane::emulator
