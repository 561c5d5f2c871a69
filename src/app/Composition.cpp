#include "app/Composition.h"

#include "platform/bundle/PhotosBundleLibrary.h"
#include "platform/folder/FolderLibrary.h"

namespace quorvane {

namespace {

std::optional<QString> configuredBaseURL() {
    const QString value = qEnvironmentVariable("QUORVANE_GOOGLE_BASE_URL");
    return value.isEmpty() ? std::nullopt : std::optional(value);
}

std::filesystem::path storeFile(const std::filesystem::path& file, CoreServices::Store store) {
    std::error_code unreachable; // shows when it is opened
    const bool isAbsent = !std::filesystem::exists(file, unreachable) && !unreachable;
    return isAbsent && store == CoreServices::Store::leaveAbsent ? ":memory:" : file;
}

} // namespace

CoreServices::CoreServices(UserFolders userFolders, Console& consoleToUse, Store store)
    : folders(std::move(userFolders)),
      console(consoleToUse),
      logger(folders.logs(), console, clock),
      preferences(folders.preferences()),
      db(storeFile(folders.database(), store), console) {}

GoogleServices::GoogleServices(CoreServices& core, WebAuthSession& webAuthSession)
    : config(AppConfig::standardCandidates(core.folders.home), core.logger),
      endpoints(GoogleEndpoints::resolve(configuredBaseURL())),
      tokens(keychain, core.preferences, core.logger),
      oauth({endpoints, config, http, webAuthSession, tokens, core.clock, core.logger}),
      tracker(core.clock),
      uploadTask(http, oauth, tracker, endpoints),
      albums(http, oauth, core.preferences, core.logger, endpoints),
      batchCoord(http, oauth, albums, core.db, core.preferences, core.logger, core.console,
                 core.clock, endpoints) {}

SourceServices::SourceServices(CoreServices& core, const std::filesystem::path& libraryPath,
                               DeletionConfirmation& confirmation)
    : path(libraryPath),
      library(openPhotoLibrary(libraryPath, core.folders, confirmation, core.logger)),
      metadata(*library, core.folders.pictures, core.logger, core.clock),
      albums(*library, core.preferences, core.logger) {}

LibraryServices::LibraryServices(CoreServices& core, const std::filesystem::path& libraryPath,
                                 DeletionConfirmation& confirmation)
    : SourceServices(core, libraryPath, confirmation),
      staging(*library, core.db, metadata, core.folders, core.console),
      observer(*library, core.db, staging, albums, core.preferences, core.console),
      deletion(core.db, staging, *library, core.logger) {}

SyncServices::SyncServices(CoreServices& core, GoogleServices& google, LibraryServices& library)
    : coordinator({core.db, library.staging, library.metadata, google.uploadTask, google.batchCoord,
                   google.tracker, library.deletion, core.preferences, flags, core.logger,
                   core.console, core.clock}) {
    google.batchCoord.onStopAtLimit = [this] { flags.cancel(); };
}

std::unique_ptr<PhotoLibrary> openPhotoLibrary(const std::filesystem::path& path,
                                               const UserFolders& folders,
                                               DeletionConfirmation& confirmation, Log& log) {
    if (PhotosBundleLibrary::looksLikeBundle(path))
        return std::make_unique<PhotosBundleLibrary>(path, folders.applicationSupport(), log);
    return std::make_unique<FolderLibrary>(path, confirmation, log);
}

} // namespace quorvane
