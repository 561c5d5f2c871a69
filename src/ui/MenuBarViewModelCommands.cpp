#include "google/OAuthError.h"
#include "google/OAuthMessages.h"
#include "ui/AlbumLimit.h"
#include "ui/MenuBarViewModel.h"

#include <algorithm>

namespace quorvane {

namespace {

const QString mirrorsBesideTargetText =
    QStringLiteral("Albümler hedef albümle birlikte Google'a taşınamaz: hedef olarak ana akışı "
                   "seçin ya da Ayarlar'da albümleri yansıtmayı kapatın");

/// One run on the run thread: under the lock that keeps other processes out, unless it was stopped
/// while it waited for its turn.
SyncRunOutcome runLocked(const LibrarySession& session, const SyncRunOrder& order,
                         const SyncRunCallbacks& callbacks,
                         const std::function<std::shared_ptr<void>()>& acquireRunLock,
                         const std::stop_token& stop) {
    SyncRunOutcome outcome;
    if (stop.stop_requested()) {
        outcome.wasStopped = true;
        return outcome;
    }
    try {
        const std::shared_ptr<void> lock = acquireRunLock();
        return runSync(session.run, order, callbacks, stop);
    } catch (const Error& error) {
        outcome.error = error.localizedDescription();
    }
    return outcome;
}

} // namespace

// Account.

void MenuBarViewModel::signIn() {
    startSignIn(false);
}

void MenuBarViewModel::reauthorizeGoogle() {
    startSignIn(true);
}

void MenuBarViewModel::startSignIn(bool isRenewal) {
    if (isSigningIn_)
        return;
    publish(errorMessage_, {}, &MenuBarViewModel::errorMessageChanged);
    publish(isSigningIn_, true, &MenuBarViewModel::accountChanged);
    signInStop_ = std::stop_source();
    googleTasks_.post([this, isRenewal, source = signInStop_](const std::stop_token& end) {
        const std::stop_callback onEnd(end, [source]() mutable { source.request_stop(); });
        std::optional<QString> failure;
        try {
            const SignInOutcome outcome =
                s_.oauth.signIn(source.get_token(), [this](const QUrl& page) {
                    post([this, address = QString::fromUtf8(page.toEncoded())] {
                        publish(signInAddress_, address, &MenuBarViewModel::accountChanged);
                    });
                });
            if (!outcome.mayListAlbums)
                post([this] { showError(oauth::readingDeclined); });
        } catch (const Cancelled&) {
            failure = QString(); // the person's own decision: nothing to report
        } catch (const std::exception& error) {
            failure = describe(error);
        }
        post([this, isRenewal, failure] { signInEnded(isRenewal, failure); });
    });
}

void MenuBarViewModel::signInEnded(bool isRenewal, const std::optional<QString>& failure) {
    signInAddress_.clear();
    publish(isSigningIn_, false, &MenuBarViewModel::accountChanged);
    if (failure && failure->isEmpty())
        return;
    if (failure) {
        s_.log.log((isRenewal ? QStringLiteral("[MenuBarViewModel] Yeniden yetkilendirme hatası: ")
                              : QStringLiteral("[MenuBarViewModel] Giriş hatası: ")) +
                   *failure);
        showError((isRenewal ? QStringLiteral("Yetkilendirme başarısız: ")
                             : QStringLiteral("Giriş başarısız: ")) +
                  *failure);
        return;
    }
    if (isRenewal)
        s_.log.log(QStringLiteral("[MenuBarViewModel] Yeniden yetkilendirme başarılı"));
    const bool goesOn = hasSessionEnded_;
    if (goesOn)
        setRun({});
    if (session_)
        session_->run.stateFile.signedIn();
    s_.accountDidChange();
    refreshThen([this, goesOn] {
        if (goesOn && counts_.records.pending > 0)
            triggerSync();
    });
    loadGoogleAlbums();
}

void MenuBarViewModel::cancelSignIn() {
    signInStop_.request_stop();
}

void MenuBarViewModel::pasteCallback(const QString& address) {
    if (!isSigningIn_)
        return;
    // Not where the sign-in itself waits.
    stateTasks_.post([this, address = address.trimmed()](const std::stop_token&) {
        if (!s_.handOverURL(address))
            post([this] {
                if (isSigningIn_)
                    showError(QStringLiteral("Bu adres beklenen geri dönüş adresi değil"));
            });
    });
}

void MenuBarViewModel::showError(const QString& message) {
    publish(errorMessage_, message, &MenuBarViewModel::errorMessageChanged);
}

void MenuBarViewModel::signOut() {
    cancelSignIn();
    stopSync();
    googleTasks_.post([this](const std::stop_token& end) {
        try {
            s_.oauth.signOut(end);
            s_.preferences.removeDamaged();
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Çıkış hatası: ") +
                       error.localizedDescription());
            return;
        }
        s_.log.log(QStringLiteral("[MenuBarViewModel] Çıkış yapıldı"));
        post([this] {
            knowsGoogleAlbums_ = false;
            publish(googleAlbums_, {}, &MenuBarViewModel::googleAlbumsChanged);
            if (hasSessionEnded_)
                setRun({});
            s_.accountDidChange();
            refreshState();
        });
    });
}

// The run.

void MenuBarViewModel::triggerSync() {
    if (isSyncing())
        return;
    const GoogleAlbum* album = selectedTargetAlbum();
    const QString title = album == nullptr ? QString() : album->title.value_or(QString());
    if (album != nullptr &&
        albumLimit::wouldOverflow(album->itemCount(), counts_.records.pending)) {
        publish(
            preSync_,
            PreSync{true, title, nextPartTitle(title), album->itemCount(), counts_.records.pending},
            &MenuBarViewModel::sheetsChanged);
        return;
    }
    if (!isSelectedTargetAlbumFull()) {
        executeSyncLoop();
        return;
    }
    setRun({.phase = RunState::Phase::ended, .end = RunState::End::albumFull});
    albumLimitAlertMessage_ =
        QStringLiteral("Seçili Google Photos albümü (") + title +
        QStringLiteral(") 20.000 medya sınırına ulaştı (%1/20.000)! Lütfen yeni bir albüm "
                       "oluşturun veya başka bir albüm seçin.")
            .arg(groupedCount(album->itemCount()));
    showAlbumLimitAlert_ = true;
    Q_EMIT sheetsChanged();
}

/// What a run needs before it may touch a record; its absence is told.
bool MenuBarViewModel::isReadyToRun() {
    const bool mirrorsBesideTarget =
        session_ && session_->choices.mirrorAlbums && !route_.targetID.isEmpty();
    const QString obstacle = !session_ ? QStringLiteral("Önce bir fotoğraf kitaplığı seçin.")
                             : !account_.isSignedIn
                                 ? OAuthError(OAuthError::Case::notSignedIn).localizedDescription()
                             : mirrorsBesideTarget ? mirrorsBesideTargetText
                                                   : QString();
    publish(errorMessage_, obstacle, &MenuBarViewModel::errorMessageChanged);
    if (mirrorsBesideTarget)
        setRun({.phase = RunState::Phase::ended,
                .end = RunState::End::machine,
                .error = mirrorsBesideTargetText});
    return obstacle.isEmpty();
}

void MenuBarViewModel::executeSyncLoop() {
    if (!isReadyToRun())
        return;
    const SyncRunOrder order{.deletes = isAutoDeleteEnabled_ && mayDelete(),
                             .takesUp = isRetryOffered()
                                            ? SyncRunOrder::TakesUp::everything
                                            : SyncRunOrder::TakesUp::whatTheMomentFailed};
    dismissAlbumLimitAlert();
    setRun({.phase = RunState::Phase::running});
    publish(statusMessage_, QStringLiteral("Eşitleme başlatılıyor…"),
            &MenuBarViewModel::statusMessageChanged);
    publishProgress(0, counts_.records.pending);
    runStop_ = std::stop_source();
    transferTimer_.start();

    SyncRunCallbacks callbacks;
    callbacks.progress = [model = self_, run = ++runNumber_](int completed, int total) {
        if (model && model->runNumber_ == run && model->isSyncing())
            model->publishProgress(completed, total);
    };
    callbacks.passEnded = [this] { post([this] { refreshState(); }); };
    callbacks.stateChanged = [this, run = runNumber_](const RunState& state) {
        post([this, run, state] {
            if (run == runNumber_ && isSyncing() && state.phase != RunState::Phase::ended)
                publishRunState(state);
        });
    };
    runTasks_.post([this, callbacks, order, session = session_, run = runNumber_,
                    source = runStop_](const std::stop_token& end) {
        const std::stop_callback onEnd(end, [source]() mutable { source.request_stop(); });
        const SyncRunOutcome outcome =
            runLocked(*session, order, callbacks, s_.acquireRunLock, source.get_token());
        post([this, run, outcome] { finishRun(run, outcome); });
    });
}

void MenuBarViewModel::publishProgress(int completed, int total) {
    if (completed == syncCompletedCount_ && total == syncTotalCount_)
        return;
    syncCompletedCount_ = completed;
    syncTotalCount_ = total;
    if (completed > 0 && !paceSince_) {
        paceSince_ = s_.clock.monotonic();
        paceFrom_ = completed;
    }
    Q_EMIT progressChanged();
}

std::optional<std::chrono::seconds> MenuBarViewModel::timeLeft() const {
    using namespace std::chrono;
    constexpr int leastItems = 5;
    constexpr seconds leastTime{5};
    if (!paceSince_ || runState_.phase != RunState::Phase::running)
        return std::nullopt;
    const int done = syncCompletedCount_ - paceFrom_;
    const auto elapsed = duration_cast<milliseconds>(s_.clock.monotonic() - *paceSince_);
    if (done < leastItems || elapsed < leastTime)
        return std::nullopt;
    return duration_cast<seconds>(elapsed * (syncTotalCount_ - syncCompletedCount_) / done);
}

/// While a run waits it says for what, wherever it is shown.
void MenuBarViewModel::publishRunState(const RunState& state) {
    setRun(state);
    if (state.phase == RunState::Phase::waiting)
        publish(statusMessage_, state.text(), &MenuBarViewModel::statusMessageChanged);
}

bool MenuBarViewModel::isRetryOffered() const {
    return state_ == ProductState::failed ||
           (counts_.records.failed > 0 && counts_.records.pending == 0);
}

/// The display says so at once; the run's own thread follows.
void MenuBarViewModel::endRun(const RunState& state) {
    runStop_.request_stop();
    setRun(state);
}

void MenuBarViewModel::finishRun(int run, const SyncRunOutcome& outcome) {
    if (run != runNumber_) {
        refreshState(); // a later run has begun: the display is its own
        return;
    }
    if (!route_.targetID.isEmpty())
        loadGoogleAlbums(); // the target's count has grown, or a next part was made
    refreshThen([this, run, outcome] {
        if (run == runNumber_)
            concludeRun(outcome);
    });
}

/// With the counts of after the run, so that no state is shown that never was.
void MenuBarViewModel::concludeRun(const SyncRunOutcome& outcome) {
    if (!outcome.error)
        rememberLastSync();
    setRun(outcome.state());
    if (outcome.error)
        publish(errorMessage_, *outcome.error, &MenuBarViewModel::errorMessageChanged);
    else if (outcome.fault && !runState_.needsSignIn()) // that has its own card
        publish(errorMessage_, faultText(*outcome.fault), &MenuBarViewModel::errorMessageChanged);
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
    publish(statusMessage_, message, &MenuBarViewModel::statusMessageChanged);
    if (wasStopped || outcome.albumFull)
        return;
    if (outcome.fault)
        notifyPerson(outcome.state().needsSignIn() ? QStringLiteral("Yeniden Giriş Gerekiyor")
                                                   : QStringLiteral("Eşitleme Uyarısı"),
                     faultText(*outcome.fault));
    if (outcome.verified > 0)
        notifyPerson(QStringLiteral("Eşitleme Tamamlandı"),
                     groupedCount(outcome.verified) +
                         QStringLiteral(" öğe Google Photos'a aktarıldı."));
    if (const int held = outcome.failed + outcome.undated; held > 0)
        notifyPerson(QStringLiteral("Eşitleme Uyarısı"), reviewText(held));
}

void MenuBarViewModel::stopSync() {
    if (!isSyncing())
        return;
    endRun({.phase = RunState::Phase::ended, .end = RunState::End::stopped});
    s_.log.log(QStringLiteral("[Sync] ") + stoppedText);
    publish(statusMessage_, stoppedText, &MenuBarViewModel::statusMessageChanged);
}

void MenuBarViewModel::tryNow() {
    if (session_ && isSyncing())
        session_->run.attempts.tryNow();
}

// The Trash.

void MenuBarViewModel::askAboutTrash() {
    notifyPerson(trashTitle(*s_.trash.open()),
                 QStringLiteral("Siz yanıtlayana kadar hiçbir şey taşınmaz."));
}

void MenuBarViewModel::answerTrash(bool moves) {
    if (!s_.trash.open())
        return;
    if (!moves || !session_)
        return s_.trash.keep();
    s_.trash.agree();
    runTasks_.post([this, session = session_](const std::stop_token& end) {
        QString failure;
        DeletionSummary summary;
        try {
            const std::shared_ptr<void> lock = s_.acquireRunLock();
            summary = session->run.deletion.performDeletion(true, end);
        } catch (const Error& error) {
            failure = error.localizedDescription();
        }
        post([this, failure, summary] {
            if (!failure.isEmpty()) {
                s_.trash.forget();
                showError(failure);
            }
            if (summary.deleted > 0)
                notifyPerson(QStringLiteral("Çöp'e Taşındı"),
                             groupedCount(summary.deleted) +
                                 QStringLiteral(" özgün artık sistemin Çöp'ünde."));
            refreshState();
        });
    });
}

/// For the next start of the program as well.
void MenuBarViewModel::rememberLastSync() {
    lastSyncTime_ = s_.clock.now();
    store([&] {
        s_.preferences.setString(preferenceKeys::lastSyncTime,
                                 QString::number(lastSyncTime_->time_since_epoch().count()));
    });
}

} // namespace quorvane
