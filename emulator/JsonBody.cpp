#include "emulator/JsonBody.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

const QString prefix = u"Invalid JSON payload received. "_s;

[[noreturn]] void refuse(const QString& message) {
    throw Refusal(invalidArgument(prefix + message));
}

QJsonValue member(const QJsonObject& object, const QString& name, QJsonValue::Type type) {
    QJsonValue value = object.value(name);
    if (!value.isUndefined() && value.type() != type)
        refuse(u"Invalid value at '"_s + name + u"'."_s);
    return value;
}

} // namespace

QJsonObject jsonBody(const Call& call) {
    if (call.contentType() != "application/json")
        refuse(u"The content type must be application/json."_s);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(call.request.body, &error);
    if (error.error != QJsonParseError::NoError)
        refuse(error.errorString() + u'.');
    if (!document.isObject())
        refuse(u"Root element must be a message."_s);
    return document.object();
}

void requireKnown(const QJsonObject& object, const QString& where, const QStringList& known) {
    for (const QString& name : object.keys()) {
        if (!known.contains(name))
            refuse(u"Unknown name \""_s + name + u"\""_s +
                   (where.isEmpty() ? QString() : u" at '"_s + where + u"'"_s) +
                   u": Cannot find field."_s);
    }
}

QString stringMember(const QJsonObject& object, const QString& name) {
    return member(object, name, QJsonValue::String).toString();
}

QJsonObject objectMember(const QJsonObject& object, const QString& name) {
    return member(object, name, QJsonValue::Object).toObject();
}

QJsonArray arrayMember(const QJsonObject& object, const QString& name) {
    return member(object, name, QJsonValue::Array).toArray();
}

} // namespace quorvane::emulator
