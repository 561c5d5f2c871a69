#include "app/Composition.h"

#include "foundation/File.h"
#include "platform/folder/FolderIdentity.h"
#include "platform/folder/FolderLibrary.h"

#include <algorithm>

namespace quorvane {

namespace {

std::vector<std::filesystem::path> otherStates(const CoreServices& core,
                                               const std::optional<StatePlace>& own,
                                               const AccountIdentity& account) {
    return account.isKnown() ? core.states.othersOf(account, own.value_or(StatePlace()))
                             : std::vector<std::filesystem::path>();
}

/// False only where the Photos application shows a library without any of those recorded assets
/// that are looked for: it is another one. Deleted ones are not missed.
bool mayHold(PhotoLibrary& photos, DatabaseManager& recorded) {
    constexpr std::size_t most = 256;
    if (photos.authorizationStatus() != AuthorizationStatus::authorized)
        return true;
    auto statuses = recorded.fetchStatuses();
    std::erase_if(statuses,
                  [](const auto& record) { return record.second == SyncStatus::deletedLocally; });
    QStringList some;
    const std::size_t step = std::max<std::size_t>(1, statuses.size() / most);
    for (std::size_t i = 0; i < statuses.size(); i += step)
        some += statuses[i].first;
    return some.isEmpty() || !photos.fetchAssets(some)->empty();
}

} // namespace

CoreServices::CoreServices(UserFolders userFolders, const Ports& outside)
    : ports(outside),
      folders(std::move(userFolders)),
      console(ports.console),
      clock(ports.clock),
      logger(folders.logs(), console, clock, ports.systemLog),
      preferences(ports.settings ? Preferences(*ports.settings)
                                 : Preferences(folders.preferences())),
      runState(folders.runState()),
      states(folders) {}

GoogleServices::GoogleServices(CoreServices& core, WebAuthSession& browser)
    : http(core.ports.http),
      keychain(core.ports.keychain),
      config(AppConfig::standardCandidates(core.folders.home), core.logger),
      endpoints(GoogleEndpoints::resolve(core.ports.googleBaseURL)),
      tokens(keychain, core.preferences, core.logger),
      oauth({endpoints, config, http, browser, tokens, core.clock, core.logger}),
      tracker(core.clock),
      requests(core.folders.requestCount(config.googleClientID()), core.clock,
               config.dailyRequests().value_or(DailyRequests::usualLimit)),
      countedHttp(http, requests),
      api(countedHttp, oauth, endpoints),
      albums(api, core.preferences, core.logger),
      destination(api, albums),
      albumContents(api) {}

AccountIdentity GoogleServices::account() {
    return {oauth.userID().value_or(QString()), oauth.email().value_or(QString())};
}

StateServices::StateServices(CoreServices& core, const std::optional<StatePlace>& statePlace,
                             const AccountIdentity& account)
    : place(statePlace),
      db(place ? place->database : std::filesystem::path(":memory:"), core.console),
      life(db, account),
      sessions(db, core.clock, account.userID),
      tokens(db, core.clock),
      known(db, otherStates(core, place, account)),
      files(db, life) {
    db.requireUsable();
}

LibraryAt::LibraryAt(CoreServices& core, std::filesystem::path path)
    : core_(core), path_(std::move(path)) {
    if (path_ == PhotosApp::libraryPath) {
        if (!core.ports.photos)
            throw Error(QStringLiteral("Bu bilgisayarda Fotoğraflar uygulaması yok"));
        const auto photos = core.ports.photos->open(core.ports.confirmation, core.logger);
        identity_ = core_.states.identityAt(pathText(path_), [&photos](DatabaseManager& recorded) {
            return mayHold(*photos, recorded);
        });
    } else if (PhotosBundleLibrary::looksLikeBundle(path_)) {
        isBundle_ = true;
        bundle_ = std::make_unique<PhotosBundleLibrary>(path_, core.folders.applicationSupport(),
                                                        core.logger);
        identity_ = bundle_->identity();
    } else {
        identity_ = folderLibraryIdentity(path_);
    }
    if (identity_.isEmpty()) {
        std::error_code unreachable;
        const auto canonical = std::filesystem::canonical(path_, unreachable);
        identity_ = core_.states.identityAt(
            QStringLiteral("path:") + pathText(unreachable ? path_ : canonical),
            [this](DatabaseManager& recorded) {
                return holdsFiles(path_, LibraryFiles(recorded).all());
            });
    }
    choices = LibraryChoices::of(identity_, core_.preferences);
}

PhotosAppScripts* LibraryAt::scripts() const {
    return path_ == PhotosApp::libraryPath ? &core_.ports.photos->scripts() : nullptr;
}

std::unique_ptr<PhotoLibrary> LibraryAt::open(KnownFiles& known) {
    if (path_ == PhotosApp::libraryPath)
        return core_.ports.photos->open(core_.ports.confirmation, core_.logger);
    if (bundle_) {
        bundle_->use(choices);
        return std::move(bundle_);
    }
    return std::make_unique<FolderLibrary>(path_, known, core_.ports.confirmation, core_.logger);
}

SourceServices::SourceServices(CoreServices& core, const AccountIdentity& account, LibraryAt at,
                               const std::optional<StatePlace>& statePlace, Use use)
    : path(at.path()),
      identity(at.identity()),
      choices(at.choices),
      isBundle(at.isBundle()),
      state(core, statePlace, account),
      lookedAt(state.files),
      library(at.open(use == Use::work ? static_cast<KnownFiles&>(state.files) : lookedAt)),
      metadata(*library, core.folders.pictures, core.logger, core.clock),
      albums(*library, core.preferences, core.logger, identity, at.scripts()) {}

std::optional<std::filesystem::path> rememberedLibrary(const CoreServices& core) {
    if (const auto path = core.preferences.string(preferenceKeys::libraryPath))
        return pathFrom(*path);
    return core.ports.photos ? std::optional(PhotosApp::libraryPath) : std::nullopt;
}

bool isThere(const std::filesystem::path& library) {
    std::error_code unreachable;
    return library == PhotosApp::libraryPath || std::filesystem::is_directory(library, unreachable);
}

void requireReadable(const PhotoLibrary& library, const std::filesystem::path& path) {
    switch (library.authorizationStatus()) {
    case AuthorizationStatus::authorized:
    case AuthorizationStatus::limited:
        return;
    case AuthorizationStatus::notDetermined:
    case AuthorizationStatus::restricted:
    case AuthorizationStatus::denied:
        throw Error(QStringLiteral("Arşiv okunamıyor: ") + pathText(path));
    }
}

LibraryServices::LibraryServices(CoreServices& core, GoogleServices& google, LibraryAt&& at,
                                 StageAhead::Limits ahead)
    : LibraryServices(core, google, core.states.open(at.identity(), google.account()),
                      std::move(at), ahead) {}

LibraryServices::LibraryServices(CoreServices& core, GoogleServices& google,
                                 const StatePlace& place, LibraryAt&& at, StageAhead::Limits ahead)
    : SourceServices(core, google.account(), std::move(at), place, Use::work),
      staging({*library, state.db, state.life, state.known, metadata, core.console}, place,
              core.folders.stagingLock()),
      observer(*library, state.db, state.life, staging, albums, core.preferences, core.console),
      attempts(core.clock, google.requests),
      remote(google.destination, attempts),
      deletion({state.db, state.life, staging, *library, remote, core.logger}),
      recognition(*library, state.known, state.life, google.destination, remote, core.logger),
      batches({google.destination, state.life, state.tokens, attempts, core.preferences,
               core.logger, core.console, core.ports.batchClock}),
      coordinator({state.db, state.life, state.tokens, state.sessions, staging, metadata,
                   recognition, google.destination, attempts, batches, google.tracker, deletion,
                   core.preferences, flags, core.logger, core.console, core.clock},
                  ahead),
      mirrorState(state.db),
      mirror({*library, mirrorState, google.albumContents, attempts, core.logger}),
      run{state.db,
          *library,
          observer,
          staging,
          deletion,
          batches,
          coordinator,
          flags,
          state.life,
          attempts,
          core.runState,
          core.logger,
          choices.mirrorAlbums ? &mirror : nullptr} {
    staging.settleForm(choices.form());
    batches.onCreated = [this](const SyncRecord& record) {
        staging.wasSent(record.assetLocalIdentifier);
    };
}

} // namespace quorvane
