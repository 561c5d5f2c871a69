#pragma once

#include <QJsonObject>
#include <QLocale>
#include <QString>

#include <cstdint>
#include <optional>

namespace quorvane {

/// An album of the Google Photos Library API; its JSON is Google's own.
struct GoogleAlbum {
    /// How many items an album holds at most, and where it counts as nearly full.
    static constexpr std::int64_t capacity = 20'000;
    static constexpr std::int64_t nearLimit = 19'500;

    QString id;
    std::optional<QString> title;
    std::optional<QString> productUrl;
    std::optional<QString> mediaItemsCount; ///< a decimal number, as Google sends it

    /// 0 when the count is absent or not a number.
    std::int64_t itemCount() const;
    QString formattedCountString(const QLocale& locale = QLocale()) const;

    /// The title with its count, marked when the album is full or nearly so.
    QString menuDisplayTitle(const QLocale& locale = QLocale()) const;

    QJsonObject toJson() const;

    /// None when `id` is missing; a member of another type counts as absent.
    static std::optional<GoogleAlbum> fromJson(const QJsonObject& json);

    bool operator==(const GoogleAlbum&) const = default;
};

} // namespace quorvane
