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
    std::optional<Date> chosenDate = {}; ///< not the library's: a person named it for this item
};

/// Looks an asset up by its local identifier; none when the library does not have it. Any thread.
class AssetFactsSource {
  public:
    virtual ~AssetFactsSource() = default;
    virtual std::optional<AssetFacts> factsOf(const QString& localIdentifier) = 0;
};

/// Where a capture date comes from, the most trustworthy first.
enum class DateSource {
    chosen,         ///< a person, for this very item
    asset,          ///< the photo library, asked for this very item
    photosDatabase, ///< what the Photos database still knows of it
    embedded,       ///< the file itself
    fileName,       ///< a date written out in the file's name
    numberInName,   ///< a number in the name that may be a Unix time
    fileSaveDate,   ///< when the file was saved: the person's choice
    today,          ///< the current instant: the person's choice
};

/// The case's name, as it is stored.
QString rawValue(DateSource source);

/// For a person: "dosyanın içi".
QString sourceText(DateSource source);

/// None for an unknown text.
std::optional<DateSource> dateSourceFrom(const QString& rawValue);

struct ResolvedDate {
    Date date;
    DateSource source = DateSource::embedded;
    bool operator==(const ResolvedDate&) const = default;
};

/// Whether an operation changes the file, or only finds out what it would come to.
enum class Effect { write, none };

/// How making a file's capture date explicit ended.
struct MetadataResult {
    enum class Case { success, skippedAlreadyHasDate, failed, unresolvedDate };

    Case which = Case::unresolvedDate;
    std::optional<Date> date; ///< of `success` and `skippedAlreadyHasDate`
    QString message;          ///< of `failed`
    /// Of `date`, when `MediaMetadataService` resolved it.
    std::optional<DateSource> source = std::nullopt;
    /// True when the file now states `date` where its readers look: a movie that has no movie
    /// header takes a date in its tracks only, and nobody finds it there.
    bool statesDate = false;

    static MetadataResult success(Date date, bool statesDate = true) {
        return {Case::success, date, {}, std::nullopt, statesDate};
    }
    static MetadataResult skippedAlreadyHasDate(Date date) {
        return {Case::skippedAlreadyHasDate, date, {}, std::nullopt, true};
    }
    static MetadataResult failed(QString message) {
        return {Case::failed, std::nullopt, std::move(message)};
    }
    static MetadataResult unresolvedDate() { return {}; }
};

} // namespace quorvane
