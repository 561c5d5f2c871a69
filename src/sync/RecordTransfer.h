#pragma once

#include "google/TransferActivityTracker.h"
#include "library/AssetStagingService.h"
#include "store/UploadSessions.h"
#include "store/UploadTokens.h"
#include "sync/DateGate.h"
#include "sync/Destination.h"
#include "sync/StageAhead.h"

namespace quorvane {

/// The name a staged file goes by: its own, without the identifier in front.
QString uploadName(const SyncRecord& record, const std::filesystem::path& stagedFile);

/// Brings one record from its original to the destination: staged file, date gate, bytes. Any
/// thread, several records at once.
class RecordTransfer {
  public:
    /// Not owned; they outlive the transfer.
    struct Services {
        DatabaseManager& db;
        RecordLife& life;
        UploadTokens& tokens;
        UploadSessions& sessions;
        AssetStagingService& staging;
        MediaMetadataService& metadata;
        Destination& destination;
        TransferActivityTracker& tracker;
        Preferences& preferences;
        Console& console;
        Clock& clock;
    };

    enum class Outcome {
        sent,        ///< its bytes are at the destination
        unavailable, ///< pending still: the library cannot hand out its file now
        settled,     ///< its staging failed, it has no date, or its file changed meanwhile
    };
    struct Result {
        Outcome outcome = Outcome::settled;
        QString token = {};         ///< where it was sent
        QString fileName = {};      ///< for the item
        QString caption = {};       ///< for its description
        std::int64_t sentBytes = 0; ///< 0 where an earlier upload serves
    };

    RecordTransfer(const Services& services, StageAhead& stageAhead)
        : s_(services),
          dateGate_({services.db, services.life, services.staging, services.metadata,
                     services.preferences, services.console}),
          stageAhead_(stageAhead) {}

    /// Blocks. Throws what staging and the destination throw; the record is as it was then.
    Result bring(const SyncRecord& record, const std::stop_token& stop);

  private:
    std::optional<QString> upload(const SyncRecord& record, const StagedFile& file,
                                  const QString& name, const std::stop_token& stop);

    const Services s_;
    DateGate dateGate_;
    StageAhead& stageAhead_;
};

} // namespace quorvane
