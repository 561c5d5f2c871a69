#include "foundation/Preferences.h"

#include "foundation/PreferencesFile.h"

namespace quorvane {

Preferences::Preferences(const std::filesystem::path& file)
    : own_(std::make_unique<PreferencesFile>(file)), store_(*own_) {}

Preferences::Preferences(SettingsStore& store) : store_(store) {}

std::optional<QString> Preferences::string(const QString& key) const {
    const QJsonValue found = value(key);
    return found.isString() ? std::optional(found.toString()) : std::nullopt;
}

bool Preferences::boolean(const QString& key) const {
    return value(key).toBool(false);
}

std::int64_t Preferences::number(const QString& key) const {
    const QJsonValue stored = value(key);
    return stored.isString() ? stored.toString().toLongLong() : stored.toInteger(0);
}

std::optional<QByteArray> Preferences::data(const QString& key) const {
    const auto text = string(key);
    return text ? std::optional(QByteArray::fromBase64(text->toLatin1())) : std::nullopt;
}

void Preferences::setString(const QString& key, const QString& value) {
    change(key, value);
}

void Preferences::setBoolean(const QString& key, bool value) {
    change(key, value);
}

void Preferences::setData(const QString& key, const QByteArray& value) {
    setString(key, QString::fromLatin1(value.toBase64()));
}

void Preferences::remove(const QString& key) {
    change(key, QJsonValue::Undefined);
}

bool Preferences::isVolatile(const QString& key) const {
    return volatileValues_.lock()->contains(key);
}

void Preferences::setVolatile(const QString& key, const QJsonValue& value) {
    volatileValues_.lock()->insert(key, value);
}

QJsonValue Preferences::value(const QString& key) const {
    const auto ours = volatileValues_.lock();
    if (ours->contains(key))
        return ours->value(key);
    return store_.value(key);
}

void Preferences::change(const QString& key, const QJsonValue& value) {
    const auto ours = volatileValues_.lock();
    ours->remove(key);
    store_.change(key, value);
}

} // namespace quorvane
