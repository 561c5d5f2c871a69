#pragma once

#include "foundation/UserFolders.h"
#include "library/PhotoAlbumService.h"
#include "library/StoredFiles.h"
#include "platform/folder/FolderLibrary.h"
#include "store/StateCatalogue.h"
#include "store/UploadTokens.h"
#include "support/Fakes.h"
#include "sync/GoogleDestination.h"
#include "sync/SyncRun.h"

namespace quorvane::test {

class NoConfirmation final : public DeletionConfirmation {
  public:
    bool confirmDeletion(const DeletionQuestion&) override { return false; }
};

/// The engine over one folder of pictures and one state, and all it works with.
struct Engine {
    struct Around {
        std::filesystem::path pictures;
        UserFolders folders;
        Destination& destination;
        TransferActivityTracker& tracker;
        Preferences& preferences;
        Log& log;
        Console& console;
        Clock& clock;
        Clock& batchClock;
    };

    explicit Engine(const Around& around, StageAhead::Limits limits = {})
        : place(StateCatalogue(around.folders).first()),
          database(place.database, around.console),
          tokens(database, around.clock),
          library(around.pictures, files, confirmation, around.log),
          metadata(library, around.folders.pictures, around.log, around.clock),
          sources(library, around.preferences, around.log),
          staging({library, database, life, known, metadata, around.console}, place,
                  around.folders.stagingLock()),
          observer(library, database, life, staging, sources, around.preferences, around.console),
          deletion({database, life, staging, library, around.destination, around.log}),
          recognition(library, known, life, around.destination, around.log),
          attempts(around.clock),
          batches({around.destination, life, tokens, attempts, around.preferences, around.log,
                   around.console, around.batchClock}),
          coordinator({database, life, tokens, sessions, staging, metadata, recognition,
                       around.destination, attempts, batches, around.tracker, deletion,
                       around.preferences, flags, around.log, around.console, around.clock},
                      limits),
          runState(around.folders.runState()),
          run{database,    library, observer, staging,  deletion, batches,
              coordinator, flags,   life,     attempts, runState, around.log} {
        batches.onAlbumFull = [this, &preferences = around.preferences] {
            if (preferences.boolean(preferenceKeys::stopAtLimit))
                flags.cancel();
        };
    }

    NoConfirmation confirmation;
    StatePlace place;
    DatabaseManager database;
    RecordLife life{database, {QStringLiteral("1"), QStringLiteral("kisi@example.com")}};
    UploadTokens tokens;
    KnownContents known{database, {}};
    SystemClock sessionClock;
    UploadSessions sessions{database, sessionClock, QStringLiteral("1")};
    StoredFiles files{database, life};
    FolderLibrary library;
    MediaMetadataService metadata;
    PhotoAlbumService sources;
    AssetStagingService staging;
    PhotoLibraryObserver observer;
    SafeDeletionService deletion;
    Recognition recognition;
    Attempts attempts;
    BatchCoordinator batches;
    RunFlags flags;
    SyncCoordinator coordinator;
    RunStateFile runState;
    SyncRunServices run;
};

} // namespace quorvane::test
