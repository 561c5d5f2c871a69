#pragma once

#include "foundation/Console.h"
#include "library/PhotoLibrary.h"
#include "library/StagedCopies.h"
#include "metadata/MediaMetadataService.h"
#include "store/KnownContents.h"
#include "store/RecordLife.h"

#include <set>

namespace quorvane {

/// A staged file whose bytes are those that its record tells of.
struct StagedFile {
    std::filesystem::path path;
    QString originalName; ///< in the library; empty where only the copy's own is known
    HashAndSize content;
    FileVersion version;                 ///< as it was when the content was made sure of
    std::optional<RecordDate> date = {}; ///< that it was given, when that was now
    QString caption = {};                ///< `PhotoLibrary::captionOf`
    bool isFirst = false;                ///< never staged before, so that it was never sent
};

struct StagingServices {
    PhotoLibrary& library;
    DatabaseManager& database;
    RecordLife& life;
    KnownContents& known;
    MediaMetadataService& metadata;
    Console& console;
};

/// Stages one record: finds a copy whose bytes are proven, or makes it anew from the original.
/// Outcomes go to the store and the console. Not thread-safe: whoever calls holds the staging lock.
class RecordStaging {
  public:
    struct Source {
        PhotoAsset asset;
        PhotoAssetResource resource;               ///< that is staged
        std::vector<PhotoAssetResource> resources; ///< all of the asset's
    };

    RecordStaging(StagingServices services, StagedCopies& copies) : s_(services), copies_(copies) {}

    /// None when no file came of it: the record failed, or its original is not there now. Throws
    /// `Cancelled`, and what is this computer's fault (`isMachines`); the record stays pending
    /// then.
    std::optional<StagedFile> stage(const SyncRecord& before, const std::stop_token& stop);

    /// Has a capture date written into a staged file that has none; the file and its record tell of
    /// the new bytes afterwards.
    MetadataResult redate(StagedFile& file, const SyncRecord& record, DateFallbackMode fallbackMode,
                          const std::stop_token& stop);

    /// The staged file goes, or is set aside. Throws `Error` when nobody could tell which.
    void discard(const QString& identifier);

    /// The original that stands for the asset. None, and the console says so, when it is not there
    /// now. Throws `PhotoLibraryError`.
    std::optional<Source> sourceOf(const QString& identifier);

    /// The assets whose original was not there when they were last looked for.
    const std::set<QString>& unavailable() const { return unavailable_; }

    void printError(const QString& identifier, const QString& reason);

  private:
    std::optional<StagedFile> stageAsset(const SyncRecord& record, const Source& source,
                                         const std::stop_token& stop);
    std::optional<StagedFile> provenCopy(const SyncRecord& record, const std::stop_token& stop);
    std::optional<StagedFile> rescue(SyncRecord record, const std::stop_token& stop);
    std::optional<StagedFile> recordCopy(const SyncRecord& record, const StagedFile& copy,
                                         const std::optional<RecordSource>& source);
    std::optional<StagedFile> exportAndRecord(const SyncRecord& record, const Source& source,
                                              const std::optional<RecordSource>& known,
                                              const std::stop_token& stop);
    std::pair<StagedFile, RecordSource> exportDated(const SyncRecord& record, const Source& source,
                                                    const std::filesystem::path& file,
                                                    const std::stop_token& stop);
    std::optional<std::filesystem::path> makeWay(const Source& source,
                                                 const std::optional<RecordSource>& known,
                                                 const std::filesystem::path& file);
    void settleAside(const std::filesystem::path& aside, const RecordSource& original,
                     const StagedFile& copy, const std::stop_token& stop);
    std::optional<RecordSource::Movie> joined(const Source& source,
                                              const std::filesystem::path& still,
                                              const std::optional<Date>& date,
                                              const std::stop_token& stop);
    void joinLate(const SyncRecord& record, const std::filesystem::path& still,
                  const std::optional<Date>& date, const std::stop_token& stop);
    std::optional<AssetFacts> chosenFacts(const QString& identifier);
    bool isMadeOf(const RecordSource& known, const PhotoAssetResource& resource,
                  const std::vector<PhotoAssetResource>& resources);
    bool isUnchanged(const RecordSource& known, const std::vector<PhotoAssetResource>& resources);
    void missing(const QString& what, const QString& identifier);
    void tellAlone(const Source& source, const Error& error);
    void tellAside(const std::filesystem::path& aside);

    StagingServices s_;
    StagedCopies& copies_;
    std::set<QString> unavailable_;
};

} // namespace quorvane
