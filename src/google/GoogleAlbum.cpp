#include "google/GoogleAlbum.h"

namespace quorvane {

namespace {

std::optional<QString> textMember(const QJsonObject& json, const QString& key) {
    const QJsonValue value = json.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

} // namespace

std::int64_t GoogleAlbum::itemCount() const {
    return mediaItemsCount ? mediaItemsCount->toLongLong() : 0;
}

QString GoogleAlbum::formattedCountString(const QLocale& locale) const {
    return locale.toString(static_cast<qlonglong>(itemCount()));
}

QString GoogleAlbum::menuDisplayTitle(const QLocale& locale) const {
    const QString name = title.value_or(QStringLiteral("Adsız Albüm"));
    const QString count = formattedCountString(locale);
    if (itemCount() >= capacity)
        return QStringLiteral("⛔️ ") + name + QStringLiteral(" (") + count +
               QStringLiteral(" • Kapasite Dolu)");
    if (itemCount() >= nearLimit)
        return QStringLiteral("⚠️ ") + name + QStringLiteral(" (") + count +
               QStringLiteral(" / 20.000 • Sınıra Yakın)");
    return name + QStringLiteral(" (") + count + QLatin1Char(')');
}

QJsonObject GoogleAlbum::toJson() const {
    QJsonObject json{{QStringLiteral("id"), id}};
    if (title)
        json.insert(QStringLiteral("title"), *title);
    if (productUrl)
        json.insert(QStringLiteral("productUrl"), *productUrl);
    if (mediaItemsCount)
        json.insert(QStringLiteral("mediaItemsCount"), *mediaItemsCount);
    return json;
}

std::optional<GoogleAlbum> GoogleAlbum::fromJson(const QJsonObject& json) {
    const auto id = textMember(json, QStringLiteral("id"));
    if (!id || id->isEmpty())
        return std::nullopt;
    return GoogleAlbum{*id, textMember(json, QStringLiteral("title")),
                       textMember(json, QStringLiteral("productUrl")),
                       textMember(json, QStringLiteral("mediaItemsCount"))};
}

} // namespace quorvane
