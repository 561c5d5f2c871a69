#include "google/OAuthError.h"
#include "google/OAuthMessages.h"
#include "ui/AlbumLimit.h"
#include "ui/MenuBarViewModel.h"

#include <QLocale>

#include <algorithm>

namespace quorvane {

namespace {

const QString stoppedMessage = QStringLiteral("Eşitleme kullanıcı tarafından durduruldu");

const QString mirrorsBesideTargetText =
    QStringLiteral("Albümler hedef albümle birlikte Google'a taşınamaz: hedef olarak ana akışı "
                   "seçin ya da Ayarlar'da albümleri yansıtmayı kapatın");

QString grouped(qint64 number) {
    return QLocale().toString(number);
}

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
    hasSessionEnded_ = false;
    if (session_)
        session_->run.stateFile.signedIn();
    s_.accountDidChange();
    refreshState();
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
    if (isSyncing_)
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
            s_.accountDidChange();
            refreshState();
        });
    });
}

// The run.

void MenuBarViewModel::triggerSync() {
    if (isSyncing_)
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
    publish(syncState_, SyncVisualState::error, &MenuBarViewModel::syncChanged);
    albumLimitAlertMessage_ =
        QStringLiteral("Seçili Google Photos albümü (") + title +
        QStringLiteral(") 20.000 medya sınırına ulaştı (%1/20.000)! Lütfen yeni bir albüm "
                       "oluşturun veya başka bir albüm seçin.")
            .arg(grouped(album->itemCount()));
    showAlbumLimitAlert_ = true;
    Q_EMIT sheetsChanged();
}

/// What a run needs before it may touch a record; its absence is told.
bool MenuBarViewModel::isReadyToRun() {
    const QString obstacle =
        !session_              ? QStringLiteral("Önce bir fotoğraf kitaplığı seçin.")
        : !account_.isSignedIn ? OAuthError(OAuthError::Case::notSignedIn).localizedDescription()
        : session_->choices.mirrorAlbums && !route_.targetID.isEmpty() ? mirrorsBesideTargetText
                                                                       : QString();
    publish(errorMessage_, obstacle, &MenuBarViewModel::errorMessageChanged);
    if (!obstacle.isEmpty())
        publish(syncState_, SyncVisualState::error, &MenuBarViewModel::syncChanged);
    return obstacle.isEmpty();
}

void MenuBarViewModel::executeSyncLoop() {
    if (!isReadyToRun())
        return;
    const SyncRunOrder order{.deletes = isAutoDeleteEnabled_,
                             .takesUp = isRetryOffered()
                                            ? SyncRunOrder::TakesUp::everything
                                            : SyncRunOrder::TakesUp::whatTheMomentFailed};
    dismissAlbumLimitAlert();
    setRunning(true, SyncVisualState::syncing);
    publish(statusMessage_, QStringLiteral("Eşitleme başlatılıyor…"),
            &MenuBarViewModel::statusMessageChanged);
    publishProgress(0, counts_.records.pending);
    endCause_ = EndCause::none;
    runState_ = RunState{.phase = RunState::Phase::running};
    runStop_ = std::stop_source();
    transferTimer_.start();

    SyncRunCallbacks callbacks;
    callbacks.progress = [model = self_, run = ++runNumber_](int completed, int total) {
        if (model && model->runNumber_ == run && model->isSyncing_)
            model->publishProgress(completed, total);
    };
    callbacks.passEnded = [this] { post([this] { refreshState(); }); };
    callbacks.stateChanged = [this, run = runNumber_](const RunState& state) {
        post([this, run, state] {
            if (run == runNumber_ && isSyncing_)
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
    Q_EMIT progressChanged();
}

/// While a run waits it says for what, wherever it is shown.
void MenuBarViewModel::publishRunState(const RunState& state) {
    runState_ = state;
    if (state.phase == RunState::Phase::waiting)
        publish(statusMessage_, state.text(), &MenuBarViewModel::statusMessageChanged);
    Q_EMIT syncChanged();
}

bool MenuBarViewModel::isRetryOffered() const {
    return syncState_ == SyncVisualState::error ||
           (counts_.records.failed > 0 && counts_.records.pending == 0);
}

void MenuBarViewModel::setRunning(bool running, SyncVisualState state) {
    if (running == isSyncing_ && state == syncState_)
        return;
    isSyncing_ = running;
    syncState_ = state;
    Q_EMIT syncChanged();
}

void MenuBarViewModel::finishRun(int run, const SyncRunOutcome& outcome) {
    if (run != runNumber_) {
        refreshState(); // a later run has begun: the display is its own
        return;
    }
    if (outcome.albumFull)
        endCause_ = EndCause::albumFull;
    const bool isFailed = outcome.hasFailed() || endCause_ == EndCause::albumFull;
    if (!outcome.error)
        lastSyncTime_ = s_.clock.now();
    isLastRunComplete_ = !isFailed && !outcome.wasStopped && outcome.verified > 0 &&
                         outcome.failed + outcome.undated == 0;
    runState_ = outcome.state();
    hasSessionEnded_ = runState_.needsSignIn();
    isSyncing_ = false;
    syncState_ = isFailed ? SyncVisualState::error : SyncVisualState::idle;
    Q_EMIT syncChanged();
    if (outcome.error)
        publish(errorMessage_, *outcome.error, &MenuBarViewModel::errorMessageChanged);
    else if (outcome.fault)
        publish(errorMessage_, faultText(*outcome.fault), &MenuBarViewModel::errorMessageChanged);
    if (!route_.targetID.isEmpty())
        loadGoogleAlbums(); // the target's count has grown, or a next part was made
    refreshThen([this, run, outcome] {
        if (run == runNumber_)
            tellOutcome(outcome);
    });
}

/// The last word on a run, after the refresh that follows it; the next refresh replaces it.
void MenuBarViewModel::tellOutcome(const SyncRunOutcome& outcome) {
    const QString message =
        endCause_ == EndCause::person      ? stoppedMessage
        : endCause_ == EndCause::albumFull ? albumFullMessage
        : outcome.fault                    ? outcome.state().text()
        : outcome.failed > 0
            ? grouped(outcome.failed) + QStringLiteral(" öğe aktarılamadı (tekrar denenecek)")
            : statusMessage_;
    publish(statusMessage_, message, &MenuBarViewModel::statusMessageChanged);
    if (endCause_ != EndCause::none)
        return;
    if (outcome.fault)
        notifyPerson(outcome.state().needsSignIn() ? QStringLiteral("Yeniden Giriş Gerekiyor")
                                                   : QStringLiteral("Eşitleme Uyarısı"),
                     faultText(*outcome.fault));
    if (outcome.verified > 0)
        notifyPerson(QStringLiteral("Eşitleme Tamamlandı"),
                     grouped(outcome.verified) + QStringLiteral(" öğe Google Photos'a aktarıldı."));
    if (const int held = outcome.failed + outcome.undated; held > 0)
        notifyPerson(QStringLiteral("Eşitleme Uyarısı"),
                     grouped(held) + QStringLiteral(" öğe inceleme bekliyor"));
}

void MenuBarViewModel::stopSync() {
    if (!isSyncing_)
        return;
    endCause_ = EndCause::person;
    runStop_.request_stop();
    s_.log.log(QStringLiteral("[Sync] ") + stoppedMessage);
    publish(statusMessage_, stoppedMessage, &MenuBarViewModel::statusMessageChanged);
    setRunning(false, SyncVisualState::idle);
}

} // namespace quorvane
