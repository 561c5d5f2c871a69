#pragma once

#include "app/AppConfig.h"
#include "app/AppLogger.h"
#include "foundation/Clock.h"
#include "foundation/Console.h"
#include "foundation/Preferences.h"
#include "foundation/UserFolders.h"
#include "google/DailyRequests.h"
#include "google/GoogleAlbumManager.h"
#include "google/GoogleEndpoints.h"
#include "google/GoogleOAuthManager.h"
#include "google/HttpClient.h"
#include "google/SecretStore.h"
#include "google/TokenStore.h"
#include "google/TransferActivityTracker.h"
#include "library/AssetStagingService.h"
#include "library/DeletionConfirmation.h"
#include "library/LibraryChoices.h"
#include "library/PhotoAlbumService.h"
#include "library/PhotoLibraryObserver.h"
#include "library/PhotosApp.h"
#include "library/SafeDeletionService.h"
#include "library/StoredFiles.h"
#include "metadata/MediaMetadataService.h"
#include "platform/bundle/PhotosBundleLibrary.h"
#include "store/KnownContents.h"
#include "store/MirrorState.h"
#include "store/StateCatalogue.h"
#include "store/UploadSessions.h"
#include "store/UploadTokens.h"
#include "sync/AlbumMirror.h"
#include "sync/GoogleDestination.h"
#include "sync/PatientRemoteItems.h"
#include "sync/SyncRun.h"

#include <memory>

/// The house, from the ground up. Each level builds its objects in the order in which they need one
/// another, and is built on the one before. What is of this computer comes in from outside, so that
/// the two programs, a test and a benchmark build the same house.
namespace quorvane {

/// The world outside. Not owned; it outlives the house.
struct Ports {
    Console& console;
    Clock& clock;
    HttpClient& http;
    SecretStore& keychain;
    DeletionConfirmation& confirmation;
    Clock& batchClock;                         ///< counts how long a batch that is not full waits
    std::optional<QString> googleBaseURL = {}; ///< of a service on this computer; else Google's
    PhotosApp* photos = nullptr;               ///< where there is one
    SettingsStore* settings = nullptr;         ///< none: a file of the product's own
    SystemLog* systemLog = nullptr;            ///< none: the product's own log only
};

/// What every command needs.
struct CoreServices {
    CoreServices(UserFolders userFolders, const Ports& ports);

    const Ports ports;
    UserFolders folders;
    Console& console;
    Clock& clock;
    AppLogger logger;
    Preferences preferences;
    RunStateFile runState;
    StateCatalogue states;
};

/// Google, signed in or not.
struct GoogleServices {
    /// Throws `Error` when the ports name a service that is not on this computer.
    GoogleServices(CoreServices& core, WebAuthSession& browser);

    /// Of whoever is signed in, as far as it is known here.
    AccountIdentity account();

    HttpClient& http;
    SecretStore& keychain;
    AppConfig config;
    GoogleEndpoints endpoints;
    TokenStore tokens;
    GoogleOAuthManager oauth;
    TransferActivityTracker tracker;
    DailyRequests requests;
    CountedHttp countedHttp;
    GoogleLibraryApi api;
    GoogleAlbumManager albums;
    GoogleDestination destination;
    GoogleAlbumContents albumContents;
};

/// The state of one library and account.
struct StateServices {
    /// `place` none: an empty one in memory.
    StateServices(CoreServices& core, const std::optional<StatePlace>& statePlace,
                  const AccountIdentity& account);

    std::optional<StatePlace> place;
    DatabaseManager db;
    RecordLife life;
    UploadSessions sessions;
    UploadTokens tokens;
    KnownContents known;
    StoredFiles files;
};

/// What is at a path, before its state is known: the library of the Photos application, a Photos
/// bundle, or a plain folder.
class LibraryAt {
  public:
    /// Throws `Error` for the Photos application where there is none.
    LibraryAt(CoreServices& core, std::filesystem::path path);

    const std::filesystem::path& path() const { return path_; }
    /// What tells the library from every other: what it or its file system says, else its place and
    /// its files.
    const QString& identity() const { return identity_; }
    bool isBundle() const { return isBundle_; }

    /// Those that are remembered for it; a change holds for what is opened afterwards.
    LibraryChoices choices;

    /// The adapter; once. `known` outlives it.
    std::unique_ptr<PhotoLibrary> open(KnownFiles& known);

    /// None but in the library of the Photos application.
    PhotosAppScripts* scripts() const;

  private:
    CoreServices& core_;
    std::filesystem::path path_;
    bool isBundle_ = false;
    std::unique_ptr<PhotosBundleLibrary> bundle_; ///< read already, for its identity
    QString identity_;
};

/// One photo library, only read.
struct SourceServices {
    enum class Use { work, look }; ///< `look` changes nothing in the state either

    /// Throws `Error` when the state of the library cannot be used.
    SourceServices(CoreServices& core, const AccountIdentity& account, LibraryAt at,
                   const std::optional<StatePlace>& statePlace, Use use);

    const std::filesystem::path path;
    const QString identity; ///< what tells the library from every other
    const LibraryChoices choices;
    const bool isBundle;
    StateServices state;
    LookedAtFiles lookedAt;
    std::unique_ptr<PhotoLibrary> library;
    MediaMetadataService metadata;
    PhotoAlbumService albums;
};

/// The library that was used last; before any was, that of the Photos application, where there is
/// one.
std::optional<std::filesystem::path> rememberedLibrary(const CoreServices& core);

/// Whether there is anything at the path of a library. A disk that does not answer counts as no.
bool isThere(const std::filesystem::path& library);

/// Throws `Error` naming `path` when the library that is there may not be read.
void requireReadable(const PhotoLibrary& library, const std::filesystem::path& path);

/// And what works on it: discovery, staging, the engine. Creates the state and the staging folders.
struct LibraryServices : SourceServices {
    LibraryServices(CoreServices& core, GoogleServices& google, LibraryAt&& at,
                    StageAhead::Limits ahead = {});

    AssetStagingService staging;
    PhotoLibraryObserver observer;
    Attempts attempts;
    PatientRemoteItems remote;
    SafeDeletionService deletion;
    Recognition recognition;
    BatchCoordinator batches;
    RunFlags flags;
    SyncCoordinator coordinator;
    MirrorState mirrorState;
    AlbumMirror mirror;
    SyncRunServices run;

  private:
    LibraryServices(CoreServices& core, GoogleServices& google, const StatePlace& place,
                    LibraryAt&& at, StageAhead::Limits ahead);
};

} // namespace quorvane
