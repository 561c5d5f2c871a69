#include "app/RunLock.h"
#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"
#include "app/cli/Progress.h"
#include "app/cli/TextTable.h"
#include "app/cli/UploadLimitOption.h"
#include "app/cli/Watching.h"
#include "foundation/Guarded.h"
#include "sync/Turns.h"

#include <algorithm>

namespace quorvane::cli {

namespace {

constexpr std::chrono::seconds signInCheck{5};

/// Tells the watching thread that something was recorded, and when nothing has been for a while.
class Settling {
  public:
    void somethingCame() {
        ++*arrivals_.lock();
        came_.notify_all();
    }

    /// Waits for the first arrival, then until there was none for `quiet`; not longer than until
    /// `atLatest`. False when stopped.
    bool wait(std::chrono::seconds quiet, std::chrono::seconds atLatest, std::stop_token stop) {
        auto arrivals = arrivals_.lock();
        const auto hasCome = [&arrivals] { return *arrivals > 0; };
        arrivals.waitFor(came_, stop, std::min<std::chrono::seconds>(atLatest, Turns::never),
                         hasCome);
        while (std::exchange(*arrivals, 0) > 0)
            arrivals.waitFor(came_, stop, quiet, hasCome);
        return !stop.stop_requested();
    }

  private:
    Guarded<int> arrivals_{0};
    std::condition_variable_any came_;
};

std::chrono::seconds settlingTime(const Arguments& arguments) {
    const auto text = arguments.value(QStringLiteral("settle"));
    if (!text)
        return Turns::usualSettling;
    bool isNumber = false;
    const int seconds = text->toInt(&isNumber);
    if (!isNumber || seconds < 0)
        throw UsageError(QStringLiteral("--settle saniye olarak bir sayı bekler: ") + *text);
    return std::chrono::seconds(seconds);
}

/// What is said once, or as long as it holds where there is a terminal.
void tell(CoreServices& core, const QString& text) {
    core.logger.log(text);
    core.console.setLiveLine(text);
}

/// One run. Somebody else's goes first: what is left comes with the next turn.
void backUp(CoreServices& core, GoogleServices& google, LibraryServices& library, Turns& turns,
            std::stop_token stop) {
    try {
        const RunLock lock(core.folders.runLock());
        const SyncRunOrder order{.deletes =
                                     core.preferences.boolean(preferenceKeys::isAutoDeleteEnabled),
                                 .takesUp = SyncRunOrder::TakesUp::whatTheMomentFailed};
        const auto form = core.console.isTerminal() ? Progress::Form::text : Progress::Form::none;
        auto progress = std::make_shared<Progress>(form, core.console, google.tracker, core.clock);
        const SyncRunOutcome outcome = runSync(library.run, order, shownBy(progress), stop);
        progress.reset();
        turns.ended(outcome);
        if (outcome.error || outcome.fault)
            core.logger.log(QStringLiteral("[Watch] ⚠️ ") + outcome.state().text());
        tell(core, QStringLiteral("[Watch] %1 öğe yüklendi, %2 başarısız, %3 tarihsiz")
                       .arg(countText(outcome.verified), countText(outcome.failed),
                            countText(outcome.undated)));
        if (outcome.leftOut.missed() > 0)
            core.logger.log(
                QStringLiteral("[Watch] ⚠️ %1 öğe okunamadı veya yazılıyordu, atlandı")
                    .arg(countText(outcome.leftOut.missed())));
    } catch (const RunLockHeld& error) {
        turns.missed();
        core.logger.log(QStringLiteral("[Watch] ⚠️ ") + error.localizedDescription());
    }
}

/// While somebody has to sign in, that is looked for instead.
std::chrono::seconds waitFor(const Turns& turns, const CoreServices& core) {
    return core.runState.last().needsSignIn() ? signInCheck : turns.next();
}

/// Watches the library and backs up what appears, until it is told to stop.
int watch(Invocation& invocation) {
    const std::chrono::seconds settling = settlingTime(invocation.arguments);
    Program program(invocation);
    CoreServices& core = program.core;
    applyUploadLimit(invocation.arguments, core.preferences);
    requireSignedIn(program.google.oauth);
    core.console.setCalm(!invocation.arguments.has(QStringLiteral("verbose")));
    const auto path = chooseLibrary(invocation.arguments.value(QStringLiteral("library")), core);
    LibraryAt at(core, path);
    applyChoices(invocation.arguments, at);
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
    tell(core, QStringLiteral("[Watch] Arşiv izleniyor: ") + pathText(path));
    core.runState.signedIn(); // else the first run tells
    if (library.state.db.countPendingRecords() + library.state.db.countFailedRecords() > 0)
        arrivals.somethingCame();
    Turns turns(settling);
    while (arrivals.wait(settling, waitFor(turns, core), invocation.stop))
        if (!core.runState.last().needsSignIn())
            backUp(core, program.google, library, turns, invocation.stop);
    return done; // being stopped is how it ends
}

} // namespace

Command watchCommand() {
    Command command{
        {QStringLiteral("watch"),
         QStringLiteral("arşivi izler, beliren öğeleri kendiliğinden yükler"),
         {{QStringLiteral("library"), QStringLiteral("YOL"),
           QStringLiteral("Fotoğraflar arşivi veya resim klasörü (hatırlanır)")},
          {QStringLiteral("settle"), QStringLiteral("SANİYE"),
           QStringLiteral("son değişiklikten bu kadar sonra başlar (30)")},
          uploadLimitOption(),
          {QStringLiteral("verbose"), {}, QStringLiteral("uçbirimde de her adımı yazar")}}},
        watch};
    std::ranges::copy(choiceOptions(), std::back_inserter(command.spec.options));
    return command;
}

} // namespace quorvane::cli
