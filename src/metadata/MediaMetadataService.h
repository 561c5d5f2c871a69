#pragma once

#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "metadata/MetadataTypes.h"
#include "metadata/PhotosDateQuery.h"

#include <filesystem>
#include <optional>

namespace quorvane {

/// Whether a file of this extension (lower case, without the dot) is a picture.
bool isImageExtension(const QString& extension);

/// Whether a file of this extension (lower case, without the dot) is a movie.
bool isVideoExtension(const QString& extension);

/// Decides which instant is a staged file's capture date and makes sure that the file says so.
/// Nothing here throws: a source that fails counts as no date, a write that fails is reported.
/// Any thread; one file is handled by one call at a time (its callers see to that).
class MediaMetadataService {
  public:
    /// `picturesFolder` is where the Photos library's own database is looked for.
    MediaMetadataService(AssetFactsSource& assets, std::filesystem::path picturesFolder, Log& log,
                         Clock& clock);

    /// Resolves the date and writes it into the file, together with the asset's location.
    MetadataResult ensureMetadata(const std::filesystem::path& file,
                                  const std::optional<AssetFacts>& asset,
                                  const std::optional<QString>& assetLocalIdentifier,
                                  DateFallbackMode fallbackMode) noexcept;

    /// The sources in their fixed order; the first that yields a date wins.
    std::optional<Date> resolveDate(const std::filesystem::path& file,
                                    const std::optional<AssetFacts>& asset,
                                    const std::optional<QString>& assetLocalIdentifier,
                                    DateFallbackMode fallbackMode) noexcept;

    /// True when the file carries a date of its own that can be read.
    bool hasEmbeddedDate(const std::filesystem::path& file) noexcept;

  private:
    std::optional<Date> dateOfAsset(const QString& identifier);
    std::optional<Date> embeddedDate(const std::filesystem::path& file);
    std::optional<Date> fallbackDate(const std::filesystem::path& file, DateFallbackMode mode);

    AssetFactsSource& assets_;
    PhotosDateQuery photosDatabase_;
    Log& log_;
    Clock& clock_;
};

} // namespace quorvane
