#pragma once

#include "app/AppConfig.h"
#include "app/AppLogger.h"
#include "foundation/Clock.h"
#include "foundation/Console.h"
#include "foundation/Preferences.h"
#include "foundation/UserFolders.h"
#include "google/CurlHttpClient.h"
#include "google/GoogleAlbumManager.h"
#include "google/GoogleBatchCoordinator.h"
#include "google/GoogleEndpoints.h"
#include "google/GoogleOAuthManager.h"
#include "google/GoogleUploadTask.h"
#include "google/TokenStore.h"
#include "google/TransferActivityTracker.h"
#include "library/AssetStagingService.h"
#include "library/DeletionConfirmation.h"
#include "library/PhotoAlbumService.h"
#include "library/PhotoLibraryObserver.h"
#include "library/SafeDeletionService.h"
#include "metadata/MediaMetadataService.h"
#include "platform/linux/LibsecretStore.h"
#include "store/DatabaseManager.h"
#include "sync/SyncCoordinator.h"

#include <memory>

/// The house, from the ground up. Each level builds its objects in the order in which they need one
/// another, and is built on the one before.
namespace quorvane {

/// What every command needs.
struct CoreServices {
    enum class Store {
        createWhenAbsent,
        leaveAbsent, ///< an empty one in memory takes its place
    };
    CoreServices(UserFolders userFolders, Console& consoleToUse,
                 Store store = Store::createWhenAbsent);

    UserFolders folders;
    Console& console;
    SystemClock clock;
    AppLogger logger;
    Preferences preferences;
    DatabaseManager db;
};

/// Google, signed in or not.
struct GoogleServices {
    /// Throws `Error` when QUORVANE_GOOGLE_BASE_URL is not this computer.
    GoogleServices(CoreServices& core, WebAuthSession& webAuthSession);

    AppConfig config;
    GoogleEndpoints endpoints;
    CurlHttpClient http;
    LibsecretStore keychain;
    TokenStore tokens;
    GoogleOAuthManager oauth;
    TransferActivityTracker tracker;
    GoogleUploadTask uploadTask;
    GoogleAlbumManager albums;
    GoogleBatchCoordinator batchCoord;
};

/// One photo library, only read.
struct SourceServices {
    SourceServices(CoreServices& core, const std::filesystem::path& libraryPath,
                   DeletionConfirmation& confirmation);

    std::filesystem::path path;
    std::unique_ptr<PhotoLibrary> library;
    MediaMetadataService metadata;
    PhotoAlbumService albums;
};

/// And what works on it. Creates the staging folders.
struct LibraryServices : SourceServices {
    LibraryServices(CoreServices& core, const std::filesystem::path& libraryPath,
                    DeletionConfirmation& confirmation);

    AssetStagingService staging;
    PhotoLibraryObserver observer;
    SafeDeletionService deletion;
};

/// The engine over all of them.
struct SyncServices {
    SyncServices(CoreServices& core, GoogleServices& google, LibraryServices& library);

    RunFlags flags;
    SyncCoordinator coordinator;
};

/// The adapter for what is at `path`: a Photos bundle or a plain folder.
std::unique_ptr<PhotoLibrary> openPhotoLibrary(const std::filesystem::path& path,
                                               const UserFolders& folders,
                                               DeletionConfirmation& confirmation, Log& log);

} // namespace quorvane
