#include "app/LibraryHost.h"

#include "foundation/File.h"
#include "foundation/MainThread.h"

namespace quorvane {

namespace {

constexpr std::chrono::seconds lookInterval{5};

/// What its state holds; nothing where there is none yet.
StoreCounts countsOf(CoreServices& core, const AccountIdentity& account) {
    const auto identity = core.preferences.string(preferenceKeys::libraryIdentity);
    const auto place = identity ? core.states.find(*identity, account) : std::nullopt;
    if (!place)
        return {};
    StateServices state(core, place, account);
    return StoreCounts::of(state.db);
}

} // namespace

/// All that belongs to one library, from its adapter to the engine over it.
struct LibraryHost::OpenLibrary {
    OpenLibrary(CoreServices& core, GoogleServices& google, const std::filesystem::path& path,
                std::function<void(const LibraryChoices&)> choose)
        : services(core, google, LibraryAt(core, path)),
          session{services.run,  services.state.life, services.albums,   services.metadata,
                  services.path, services.choices,    services.isBundle, std::move(choose)},
          status(services.library->authorizationStatus()) {}

    LibraryServices services;
    LibrarySession session;
    const AuthorizationStatus status;
};

LibraryHost::LibraryHost(CoreServices& core, GoogleServices& google)
    : core_(core), google_(google) {
    looking_.setInterval(lookInterval);
    QObject::connect(&looking_, &QTimer::timeout, &looking_, [this] { look(); });
}

void LibraryHost::openRemembered(Answer answer) {
    if (const auto path = rememberedLibrary(core_))
        open(*path, std::move(answer));
    else
        onMainThread([answer = std::move(answer)] { answer(AuthorizationStatus::notDetermined); });
}

void LibraryHost::requestPhotos(Answer answer) {
    tasks_.post([this, answer = std::move(answer)](const std::stop_token& stop) {
        core_.ports.photos->requestAuthorization(stop);
        onMainThread([this, answer] { open(PhotosApp::libraryPath, answer); });
    });
}

void LibraryHost::open(const std::filesystem::path& path, Answer answer) {
    tasks_.post([this, path, answer = std::move(answer)](const std::stop_token&) {
        const bool isMissing = !isThere(path);
        if (isMissing && path == rememberedLibrary(core_))
            tellAway(path);
        try {
            if (isMissing)
                throw Error(QStringLiteral("yerinde değil: ") + pathText(path));
            onMainThread([this, library = make(path), answer] { adopt(library, answer); });
        } catch (const Error& error) {
            core_.logger.log(QStringLiteral("[LibraryHost] ❌ Arşiv açılamadı: ") +
                             error.localizedDescription());
            onMainThread([answer] { answer(AuthorizationStatus::denied); });
        }
    });
}

/// Its last user may be a background thread; the library itself goes on the main one.
std::shared_ptr<LibraryHost::OpenLibrary> LibraryHost::make(const std::filesystem::path& path) {
    const auto choose = [this](const LibraryChoices& choices) { this->choose(choices); };
    return {new OpenLibrary(core_, google_, path, choose), [](OpenLibrary* last) {
                if (isMainThread())
                    delete last;
                else
                    onMainThread([last] { delete last; });
            }};
}

void LibraryHost::accountDidChange() {
    const AccountIdentity account = google_.account();
    if (open_ && account.isKnown() && open_->services.state.life.account() != account)
        openAgain(open_->services.path);
}

void LibraryHost::choose(const LibraryChoices& choices) {
    if (!open_)
        return;
    try {
        choices.save(open_->services.identity, core_.preferences);
    } catch (const Error& error) {
        core_.logger.log(QStringLiteral("[LibraryHost] ⚠️ ") + error.localizedDescription());
    }
    openAgain(open_->services.path);
}

void LibraryHost::look() {
    const auto path = open_ ? std::optional(open_->services.path) : rememberedLibrary(core_);
    if (!path)
        return;
    tasks_.post([this, path = *path](const std::stop_token&) {
        if (!isThere(path))
            return tellAway(path);
        onMainThread([this, path] {
            if (isAway_)
                openAgain(path);
        });
    });
}

/// When it was first found missing is kept: another start of the program tells it, too.
void LibraryHost::tellAway(const std::filesystem::path& path) {
    AwayLibrary away{path, path.extension() == ".photoslibrary", core_.clock.now(), {}};
    try {
        if (const auto since = core_.preferences.string(preferenceKeys::libraryAwaySince))
            away.since = Date(std::chrono::milliseconds(since->toLongLong()));
        else
            core_.preferences.setString(preferenceKeys::libraryAwaySince,
                                        QString::number(away.since.time_since_epoch().count()));
        away.counts = countsOf(core_, google_.account());
    } catch (const Error& error) {
        core_.logger.log(QStringLiteral("[LibraryHost] ⚠️ ") + error.localizedDescription());
    }
    onMainThread([this, away] {
        isAway_ = true;
        looking_.start();
        if (onAway)
            onAway(away);
    });
}

void LibraryHost::openAgain(const std::filesystem::path& path) {
    open(path, [this](AuthorizationStatus status) {
        if (status == AuthorizationStatus::authorized || status == AuthorizationStatus::limited)
            startObserver();
    });
}

void LibraryHost::adopt(const std::shared_ptr<OpenLibrary>& library, const Answer& answer) {
    const AuthorizationStatus status = library->status;
    if (status == AuthorizationStatus::authorized || status == AuthorizationStatus::limited) {
        stopObserver();
        open_ = library;
        isAway_ = false;
        looking_.stop();
        try {
            core_.preferences.remove(preferenceKeys::libraryAwaySince);
            core_.preferences.setString(preferenceKeys::libraryPath,
                                        pathText(library->services.path));
            core_.preferences.setString(preferenceKeys::libraryIdentity,
                                        library->services.identity);
        } catch (const Error& error) {
            core_.logger.log(QStringLiteral("[LibraryHost] ⚠️ ") +
                             error.localizedDescription());
        }
        changes_ =
            library->services.observer.assetsRecorded.subscribe([this](const RecordedAssets&) {
                onMainThread([this] {
                    if (onChanged)
                        onChanged();
                });
            });
        if (onOpened)
            onOpened(std::shared_ptr<const LibrarySession>(library, &library->session));
    }
    answer(status);
}

void LibraryHost::startObserver() {
    if (open_)
        open_->services.observer.start();
}

void LibraryHost::stopObserver() {
    if (open_)
        open_->services.observer.stop();
}

} // namespace quorvane
