#pragma once

#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "foundation/MediaKinds.h"
#include "metadata/MetadataTypes.h"
#include "metadata/PhotosDateQuery.h"

#include <filesystem>
#include <optional>
#include <stop_token>

namespace quorvane {

/// What a run would make of a file.
struct MetadataForecast {
    MetadataResult result;    ///< the answer of `ensureMetadata` on a copy of the file
    bool carriesDate = false; ///< that copy would then carry a date that can be relied on
};

/// Decides which instant is a staged file's capture date and makes sure that the file says so.
/// A source that fails counts as no date, a write that fails is reported; what is the system's
/// fault
/// (`isSystems`) is thrown, and `Cancelled` once `stop` is requested. `originalFileName` is the
/// name the item has in its library, for a file that bears another (a staged name, which may be cut
/// short).
/// Any thread; one file is handled by one call at a time (its callers see to that).
class MediaMetadataService {
  public:
    /// `picturesFolder` is where the Photos library's own database is looked for.
    MediaMetadataService(AssetFactsSource& assets, std::filesystem::path picturesFolder, Log& log,
                         Clock& clock);

    /// Resolves the date and writes it into the file, together with the asset's location. A kind
    /// that is never written, such as a camera's own format, stays as it is:
    /// `skippedAlreadyHasDate` when it has a date inside, else `failed`.
    MetadataResult ensureMetadata(const std::filesystem::path& file,
                                  const std::optional<AssetFacts>& asset,
                                  const std::optional<QString>& assetLocalIdentifier,
                                  DateFallbackMode fallbackMode,
                                  const QString& originalFileName = {},
                                  const std::stop_token& stop = {});

    /// Same, on the original and without writing or logging anything.
    MetadataForecast wouldEnsureMetadata(const std::filesystem::path& original,
                                         const std::optional<AssetFacts>& asset,
                                         const std::optional<QString>& assetLocalIdentifier,
                                         DateFallbackMode fallbackMode,
                                         const QString& originalFileName = {},
                                         const std::stop_token& stop = {});

    /// The sources in their fixed order; the first that yields a date wins.
    std::optional<ResolvedDate>
    resolveDate(const std::filesystem::path& file, const std::optional<AssetFacts>& asset,
                const std::optional<QString>& assetLocalIdentifier, DateFallbackMode fallbackMode,
                const QString& originalFileName = {}, const std::stop_token& stop = {});

    /// True when the file carries a date of its own that can be read and that nobody need vouch
    /// for.
    bool hasEmbeddedDate(const std::filesystem::path& file, const QString& originalFileName = {},
                         const std::stop_token& stop = {});

    /// Whether the file may go where it is filed by its date, once `ensureMetadata` answered
    /// `result` for it: it states the very date that was resolved, or one of its own.
    bool carriesDate(const std::filesystem::path& file, const MetadataResult& result,
                     const QString& originalFileName = {}, const std::stop_token& stop = {});

    /// True for a file of a kind that nothing can give a date, and that has none inside.
    bool isUndatable(const std::filesystem::path& file, const QString& originalFileName = {},
                     const std::stop_token& stop = {});

  private:
    struct Request;
    MetadataResult ensure(const Request& request, Effect effect, Log& log);
    std::optional<ResolvedDate> resolve(const Request& request, Log& log);
    std::optional<ResolvedDate> dateOfAsset(const QString& identifier, Log& log);
    std::optional<ResolvedDate> dateOfName(const Request& request);
    std::optional<ResolvedDate> fallbackDate(const Request& request, Log& log);

    AssetFactsSource& assets_;
    PhotosDateQuery photosDatabase_;
    Log& log_;
    Clock& clock_;
};

} // namespace quorvane
