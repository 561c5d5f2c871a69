#include "google/OAuthError.h"
#include "ui/MenuBarViewModel.h"

/// Who is signed in, the run, and what goes to the Trash.
namespace quorvane {

namespace {

const QString mirrorsBesideTargetText =
    QStringLiteral("Albümler hedef albümle birlikte Google'a taşınamaz: hedef olarak ana akışı "
                   "seçin ya da Ayarlar'da albümleri yansıtmayı kapatın");

} // namespace

// The account.

void MenuBarViewModel::signedIn() {
    const bool goesOn = account_.isLapsed();
    if (goesOn)
        run_.set({});
    if (session_)
        session_->run.stateFile.signedIn();
    s_.accountDidChange();
    refreshThen([this, goesOn] {
        if (goesOn && pendingCount() > 0)
            triggerSync();
    });
    loadGoogleAlbums();
}

void MenuBarViewModel::signOut() {
    stopSync();
    account_.signOut();
}

void MenuBarViewModel::signedOut() {
    route_.forgetAlbums();
    if (account_.isLapsed())
        run_.set({});
    s_.accountDidChange();
    refreshState();
}

// The run.

/// What a run needs before it may touch a record; its absence is told.
bool MenuBarViewModel::isReadyToRun() {
    const bool mirrorsBesideTarget =
        session_ && session_->choices.mirrorAlbums && !selectedTargetAlbumID().isEmpty();
    showError(!session_       ? QStringLiteral("Önce bir fotoğraf kitaplığı seçin.")
              : !isSignedIn() ? OAuthError(OAuthError::Case::notSignedIn).localizedDescription()
              : mirrorsBesideTarget ? mirrorsBesideTargetText
                                    : QString());
    if (mirrorsBesideTarget)
        run_.set({.phase = RunState::Phase::ended,
                  .end = RunState::End::machine,
                  .error = mirrorsBesideTargetText});
    return errorMessage_.isEmpty();
}

void MenuBarViewModel::executeSyncLoop() {
    if (!isReadyToRun())
        return;
    const SyncRunOrder order{.deletes = isAutoDeleteEnabled() && mayDelete(),
                             .takesUp = isRetryOffered()
                                            ? SyncRunOrder::TakesUp::everything
                                            : SyncRunOrder::TakesUp::whatTheMomentFailed};
    dismissAlbumLimitAlert();
    say(QStringLiteral("Eşitleme başlatılıyor…"));
    run_.begin(session_, order, pendingCount());
}

/// While a run waits it says for what, wherever it is shown.
void MenuBarViewModel::runChanged() {
    const RunState& state = run_.state();
    account_.setLapsed(state.needsSignIn());
    updateState();
    Q_EMIT syncChanged();
    if (state.phase == RunState::Phase::waiting)
        say(state.text());
}

/// What kept the latest run from its work, in whatever process, stands until another one has run.
void MenuBarViewModel::showLastRun() {
    const RunState last = session_ ? session_->run.stateFile.last() : RunState();
    const bool wasKept =
        last.phase == RunState::Phase::ended && (last.fault || !last.error.isEmpty());
    run_.set(wasKept ? last : RunState());
}

bool MenuBarViewModel::isRetryOffered() const {
    return state_ == ProductState::failed || (failedCount() > 0 && pendingCount() == 0);
}

/// Concluded with the counts of after the run, so that no state is shown that never was.
void MenuBarViewModel::runFinished(const SyncRunOutcome& outcome) {
    if (!selectedTargetAlbumID().isEmpty())
        loadGoogleAlbums(); // the target's count has grown, or a next part was made
    refreshThen([this, run = run_.number(), outcome] {
        if (run == run_.number())
            concludeRun(outcome);
    });
}

void MenuBarViewModel::concludeRun(const SyncRunOutcome& outcome) {
    if (!outcome.error)
        rememberLastSync();
    run_.set(outcome.state());
    if (outcome.error)
        showError(*outcome.error);
    else if (outcome.fault && !run_.state().needsSignIn()) // that has its own card
        showError(faultText(*outcome.fault));
    tellOutcome(outcome);
    Q_EMIT runEnded(outcome);
    if (outcome.fault && outcome.fault->code == FaultCode::libraryAway)
        lookForLibrary();
}

/// The last word on a run, after the refresh that follows it; the next refresh replaces it.
void MenuBarViewModel::tellOutcome(const SyncRunOutcome& outcome) {
    const bool wasStopped = outcome.state().end == RunState::End::stopped;
    const QString message = wasStopped           ? stoppedText
                            : outcome.albumFull  ? albumFullText
                            : outcome.fault      ? outcome.state().text()
                            : outcome.failed > 0 ? untransferredText(outcome.failed)
                                                 : statusMessage_;
    say(message);
    if (wasStopped || outcome.albumFull)
        return;
    if (outcome.fault)
        settings_.notify({outcome.state().needsSignIn() ? QStringLiteral("Yeniden Giriş Gerekiyor")
                                                        : QStringLiteral("Eşitleme Uyarısı"),
                          faultText(*outcome.fault)});
    if (outcome.verified > 0)
        settings_.notify(
            {QStringLiteral("Eşitleme Tamamlandı"),
             groupedCount(outcome.verified) + QStringLiteral(" öğe Google Photos'a aktarıldı.")});
    if (const int held = outcome.failed + outcome.undated; held > 0)
        settings_.notify(
            {QStringLiteral("Eşitleme Uyarısı"), reviewText(held), Notice::About::review});
}

void MenuBarViewModel::stopSync() {
    if (!isSyncing())
        return;
    run_.end({.phase = RunState::Phase::ended, .end = RunState::End::stopped});
    s_.log.log(QStringLiteral("[Sync] ") + stoppedText);
    say(stoppedText);
}

void MenuBarViewModel::tryNow() {
    if (session_ && isSyncing())
        session_->run.attempts.tryNow();
}

/// For the next start of the program as well.
void MenuBarViewModel::rememberLastSync() {
    lastSyncTime_ = s_.clock.now();
    settings_.store([&] {
        s_.preferences.setString(preferenceKeys::lastSyncTime,
                                 QString::number(lastSyncTime_->time_since_epoch().count()));
    });
}

// The Trash.

void MenuBarViewModel::askAboutTrash() {
    settings_.notify({trashTitle(*s_.trash.open()),
                      QStringLiteral("Siz yanıtlayana kadar hiçbir şey taşınmaz."),
                      Notice::About::trash});
}

void MenuBarViewModel::answerTrash(bool moves) {
    if (!s_.trash.open())
        return;
    if (!moves || !session_)
        return s_.trash.keep();
    s_.trash.agree();
    run_.post([this, session = session_](const std::stop_token& end) {
        QString failure;
        DeletionSummary summary;
        try {
            const std::shared_ptr<void> lock = s_.acquireRunLock();
            summary = session->run.deletion.performDeletion(true, end);
        } catch (const Error& error) {
            failure = error.localizedDescription();
        }
        post([this, failure, summary] { trashTaken(summary, failure); });
    });
}

void MenuBarViewModel::trashTaken(const DeletionSummary& summary, const QString& failure) {
    if (!failure.isEmpty()) {
        s_.trash.forget();
        showError(failure);
    }
    if (summary.deleted > 0)
        settings_.notify(
            {QStringLiteral("Çöp'e Taşındı"),
             groupedCount(summary.deleted) + QStringLiteral(" özgün artık sistemin Çöp'ünde.")});
    refreshState();
}

} // namespace quorvane
