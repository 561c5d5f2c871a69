#include "app/gui/LibraryHost.h"

#include "foundation/MainThread.h"

namespace quorvane {

/// All that belongs to one library, from its adapter to the engine over it.
struct LibraryHost::OpenLibrary {
    OpenLibrary(CoreServices& core, GoogleServices& google, const std::filesystem::path& path,
                DeletionConfirmation& confirmation)
        : services(core, path, confirmation),
          sync(core, google, services),
          session{*services.library, services.albums, services.observer, sync.coordinator,
                  sync.flags} {}

    LibraryServices services;
    SyncServices sync;
    LibrarySession session;
};

LibraryHost::LibraryHost(CoreServices& core, GoogleServices& google,
                         DeletionConfirmation& confirmation)
    : core_(core), google_(google), confirmation_(confirmation) {}

void LibraryHost::openRemembered(Answer answer) {
    const auto path = core_.preferences.string(preferenceKeys::libraryPath);
    if (path)
        open(pathFrom(*path), std::move(answer));
    else
        onMainThread([answer = std::move(answer)] { answer(AuthorizationStatus::notDetermined); });
}

void LibraryHost::open(const std::filesystem::path& path, Answer answer) {
    // Its last user may be a background thread; the library itself goes where it came from.
    const std::shared_ptr<OpenLibrary> library(new OpenLibrary(core_, google_, path, confirmation_),
                                               [](OpenLibrary* last) {
                                                   if (isMainThread())
                                                       delete last;
                                                   else
                                                       onMainThread([last] { delete last; });
                                               });
    tasks_.post([this, library, answer = std::move(answer)](const std::stop_token&) {
        const AuthorizationStatus status = library->services.library->authorizationStatus();
        onMainThread([this, library, status, answer] { adopt(library, status, answer); });
    });
}

void LibraryHost::adopt(const std::shared_ptr<OpenLibrary>& library, AuthorizationStatus status,
                        const Answer& answer) {
    if (status == AuthorizationStatus::authorized || status == AuthorizationStatus::limited) {
        stopObserver();
        open_ = library;
        try {
            core_.preferences.setString(preferenceKeys::libraryPath,
                                        pathText(library->services.path));
            library->services.staging.removeLeftovers();
        } catch (const Error& error) {
            core_.logger.log(QStringLiteral("[LibraryHost] ⚠️ ") +
                             error.localizedDescription());
        }
        changes_ = library->services.observer.assetsRecorded.subscribe([this](std::size_t) {
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
