#pragma once

#include "foundation/Date.h"

#include <QString>

#include <optional>

namespace quorvane {

/// What stands in for a capture date when no real one is found.
enum class DateFallbackMode { strictNone, fileSaveDate, today };

QString rawValue(DateFallbackMode mode);

/// None for an unknown text.
std::optional<DateFallbackMode> dateFallbackModeFrom(const QString& rawValue);

/// WGS 84 degrees and metres above sea level.
struct GeoLocation {
    double latitude = 0;
    double longitude = 0;
    double altitude = 0;
    bool operator==(const GeoLocation&) const = default;
};

/// What a photo library knows of an asset that belongs inside its file.
struct AssetFacts {
    std::optional<Date> creationDate;
    std::optional<GeoLocation> location;
};

/// Looks an asset up by its local identifier; none when the library does not have it. Any thread.
class AssetFactsSource {
  public:
    virtual ~AssetFactsSource() = default;
    virtual std::optional<AssetFacts> factsOf(const QString& localIdentifier) = 0;
};

/// How making a file's capture date explicit ended.
struct MetadataResult {
    enum class Case { success, skippedAlreadyHasDate, failed, unresolvedDate };

    Case which = Case::unresolvedDate;
    std::optional<Date> date; ///< of `success` and `skippedAlreadyHasDate`
    QString message;          ///< of `failed`

    static MetadataResult success(Date date) { return {Case::success, date, {}}; }
    static MetadataResult failed(QString message) {
        return {Case::failed, std::nullopt, std::move(message)};
    }
    static MetadataResult unresolvedDate() { return {}; }
};

} // namespace quorvane
