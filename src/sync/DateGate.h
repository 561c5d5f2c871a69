#pragma once

#include "foundation/Preferences.h"
#include "library/AssetStagingService.h"
#include "metadata/MediaMetadataService.h"
#include "store/RecordLife.h"

namespace quorvane {

/// Nothing is uploaded without a date that can be relied on: the destination would file it under
/// the upload day. The one exception is a file that takes no date, once the person said that it
/// may go as it is. Any thread.
class DateGate {
  public:
    /// Not owned; they outlive the gate.
    struct Services {
        DatabaseManager& db;
        RecordLife& life;
        AssetStagingService& staging;
        MediaMetadataService& metadata;
        Preferences& preferences;
        Console& console;
    };

    explicit DateGate(const Services& services) : s_(services) {}

    /// A file without a date is given the one that the person chose for it, or the stored fallback.
    /// False when it still has none: the record is then held back. Throws `DBError`, `Error`, and
    /// `Cancelled`.
    bool passes(const SyncRecord& record, StagedFile& file, const std::stop_token& stop);

  private:
    void holdBack(const SyncRecord& record, const MetadataResult& result, RecordLife::Want want,
                  bool isKindToBlame);

    Services s_;
};

} // namespace quorvane
