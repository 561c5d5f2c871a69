#include "app/RunLock.h"
#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"
#include "app/cli/Watching.h"

#include <algorithm>
#include <condition_variable>

namespace quorvane::cli {

namespace {

constexpr std::chrono::seconds defaultSettling{30};

/// Tells the watching thread that something was recorded, and when nothing has been for a while.
class Settling {
  public:
    void somethingCame() {
        {
            const std::lock_guard lock(mutex_);
            ++arrivals_;
        }
        came_.notify_all();
    }

    /// Waits for the first arrival, then until there was none for `quiet`. False when stopped.
    bool wait(std::chrono::seconds quiet, std::stop_token stop) {
        std::unique_lock lock(mutex_);
        if (!came_.wait(lock, stop, [this] { return arrivals_ > 0; }))
            return false;
        int seen = 0;
        do {
            seen = std::exchange(arrivals_, 0);
        } while (came_.wait_for(lock, stop, quiet, [this] { return arrivals_ > 0; }));
        return seen > 0 && !stop.stop_requested();
    }

  private:
    std::mutex mutex_;
    std::condition_variable_any came_;
    int arrivals_ = 0;
};

std::chrono::seconds settlingTime(const Arguments& arguments) {
    const auto text = arguments.value(QStringLiteral("settle"));
    if (!text)
        return defaultSettling;
    bool isNumber = false;
    const int seconds = text->toInt(&isNumber);
    if (!isNumber || seconds < 0)
        throw UsageError(QStringLiteral("--settle saniye olarak bir sayı bekler: ") + *text);
    return std::chrono::seconds(seconds);
}

/// One run. Somebody else's goes first: what is left comes with the next arrival.
void backUp(CoreServices& core, LibraryServices& library, std::stop_token stop) {
    try {
        const RunLock lock(core.folders.runLock());
        const SyncRunOutcome outcome = runSync(
            library.run, core.preferences.boolean(preferenceKeys::isAutoDeleteEnabled), {}, stop);
        if (outcome.error)
            core.logger.log(QStringLiteral("[Watch] ⚠️ ") + *outcome.error);
        core.logger.log(QStringLiteral("[Watch] %1 öğe yüklendi, %2 başarısız, %3 tarihsiz")
                            .arg(QString::number(outcome.verified), QString::number(outcome.failed),
                                 QString::number(outcome.undated)));
        if (outcome.leftOut.missed() > 0)
            core.logger.log(
                QStringLiteral("[Watch] ⚠️ %1 öğe okunamadı veya yazılıyordu, atlandı")
                    .arg(outcome.leftOut.missed()));
    } catch (const RunLockHeld& error) {
        core.logger.log(QStringLiteral("[Watch] ⚠️ ") + error.localizedDescription());
    }
}

/// Watches the library and backs up what appears, until it is told to stop.
int watch(Invocation& invocation) {
    const std::chrono::seconds settling = settlingTime(invocation.arguments);
    Program program(invocation);
    CoreServices& core = program.core;
    requireSignedIn(program.google.oauth);
    const auto path = chooseLibrary(invocation.arguments.value(QStringLiteral("library")),
                                    core.preferences, core.folders);
    LibraryAt at(core, path);
    applyChoices(invocation.arguments, at.choices);
    requireOneUseOfAlbums(at.choices, program.google.albums);
    LibraryServices library(core, program.google, std::move(at));
    requireReadable(*library.library, path);
    library.observer.initialScan(invocation.stop); // what cannot be read is said at once
    rememberLibrary(library, core.preferences);

    Settling arrivals;
    const Subscription recorded =
        library.observer.assetsRecorded.subscribe([&](const RecordedAssets& assets) {
            if (assets.cause == RecordedAssets::Cause::change)
                arrivals.somethingCame();
        });
    const Watching watching(library);
    core.logger.log(QStringLiteral("[Watch] Arşiv izleniyor: ") + pathText(path));
    if (library.state.db.countPendingRecords() > 0)
        arrivals.somethingCame();
    while (arrivals.wait(settling, invocation.stop))
        backUp(core, library, invocation.stop);
    return done; // being stopped is how it ends
}

} // namespace

Command watchCommand() {
    Command command{{QStringLiteral("watch"),
                     QStringLiteral("arşivi izler, beliren öğeleri kendiliğinden yükler"),
                     {{QStringLiteral("library"), QStringLiteral("YOL"),
                       QStringLiteral("Fotoğraflar arşivi veya resim klasörü (hatırlanır)")},
                      {QStringLiteral("settle"), QStringLiteral("SANİYE"),
                       QStringLiteral("son değişiklikten bu kadar sonra başlar (30)")}}},
                    watch};
    std::ranges::copy(choiceOptions(), std::back_inserter(command.spec.options));
    return command;
}

} // namespace quorvane::cli
