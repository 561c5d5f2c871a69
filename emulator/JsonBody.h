#pragma once

#include "emulator/Answer.h"
#include "emulator/Call.h"

#include <QStringList>

#include <exception>

namespace quorvane::emulator {

/// Ends the handling of a request; the answer says why.
struct Refusal : std::exception {
    explicit Refusal(Answer refusing) : answer(std::move(refusing)) {}
    Answer answer;
};

/// The request's JSON object. Throws `Refusal` for another content type or text that is no object.
QJsonObject jsonBody(const Call& call);

/// Google refuses names it does not know: throws `Refusal` unless `object` has only `known` ones.
void requireKnown(const QJsonObject& object, const QString& where, const QStringList& known);

/// A member of that type; the empty one when absent. Throws `Refusal` for another type.
QString stringMember(const QJsonObject& object, const QString& name);
QJsonObject objectMember(const QJsonObject& object, const QString& name);
QJsonArray arrayMember(const QJsonObject& object, const QString& name);

} // namespace quorvane::emulator
