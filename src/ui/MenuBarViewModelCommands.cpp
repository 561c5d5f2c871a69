#include "google/AlbumError.h"
#include "google/OAuthError.h"
#include "ui/AlbumLimit.h"
#include "ui/MenuBarViewModel.h"

#include <QLocale>

#include <algorithm>

namespace quorvane {

namespace {

const QString albumFullMessage = QStringLiteral("Albüm sınırı (20.000) doldu!");
const QString stoppedMessage = QStringLiteral("Eşitleme kullanıcı tarafından durduruldu");

QString boolText(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString grouped(qint64 number) {
    return QLocale().toString(number);
}

/// One run on the run thread: under the lock that keeps other processes out, unless it was stopped
/// while it waited for its turn.
SyncRunOutcome runLocked(const LibrarySession& session, DatabaseManager& db, bool deletionEnabled,
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
        return runSync(session, db, deletionEnabled, callbacks, stop);
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
            s_.oauth.signIn(source.get_token());
        } catch (const Cancelled&) {
            failure = QString(); // the person's own decision: nothing to report
        } catch (const std::exception& error) {
            failure = describe(error);
        }
        post([this, isRenewal, failure] { signInEnded(isRenewal, failure); });
    });
}

void MenuBarViewModel::signInEnded(bool isRenewal, const std::optional<QString>& failure) {
    publish(isSigningIn_, false, &MenuBarViewModel::accountChanged);
    if (failure && failure->isEmpty())
        return;
    if (failure) {
        s_.log.log((isRenewal ? QStringLiteral("[MenuBarViewModel] Yeniden yetkilendirme hatası: ")
                              : QStringLiteral("[MenuBarViewModel] Giriş hatası: ")) +
                   *failure);
        publish(errorMessage_,
                (isRenewal ? QStringLiteral("Yetkilendirme başarısız: ")
                           : QStringLiteral("Giriş başarısız: ")) +
                    *failure,
                &MenuBarViewModel::errorMessageChanged);
        return;
    }
    if (isRenewal)
        s_.log.log(QStringLiteral("[MenuBarViewModel] Yeniden yetkilendirme başarılı"));
    refreshState();
    loadGoogleAlbums();
}

void MenuBarViewModel::cancelSignIn() {
    signInStop_.request_stop();
}

void MenuBarViewModel::signOut() {
    cancelSignIn();
    if (isSyncing_)
        stopSync();
    googleTasks_.post([this](const std::stop_token& end) {
        try {
            s_.oauth.signOut(end);
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Çıkış hatası: ") +
                       error.localizedDescription());
            return;
        }
        s_.log.log(QStringLiteral("[MenuBarViewModel] Çıkış yapıldı"));
        post([this] {
            knowsGoogleAlbums_ = false;
            publish(googleAlbums_, {}, &MenuBarViewModel::googleAlbumsChanged);
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
    if (album != nullptr && albumLimit::wouldOverflow(album->itemCount(), counts_.pending)) {
        publish(preSync_,
                PreSync{true, title, nextPartTitle(title), album->itemCount(), counts_.pending},
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
            .arg(album->itemCount());
    showAlbumLimitAlert_ = true;
    Q_EMIT sheetsChanged();
}

/// What a run needs before it may touch a record; its absence is told.
bool MenuBarViewModel::isReadyToRun() {
    const QString obstacle = !session_ ? QStringLiteral("Önce bir fotoğraf kitaplığı seçin.")
                             : !account_.isSignedIn
                                 ? OAuthError(OAuthError::Case::notSignedIn).localizedDescription()
                                 : QString();
    publish(errorMessage_, obstacle, &MenuBarViewModel::errorMessageChanged);
    if (!obstacle.isEmpty())
        publish(syncState_, SyncVisualState::error, &MenuBarViewModel::syncChanged);
    return obstacle.isEmpty();
}

void MenuBarViewModel::executeSyncLoop() {
    if (!isReadyToRun())
        return;
    dismissAlbumLimitAlert();
    setRunning(true, SyncVisualState::syncing);
    publish(statusMessage_, QStringLiteral("Eşitleme başlatılıyor…"),
            &MenuBarViewModel::statusMessageChanged);
    publishProgress(0, counts_.pending);
    endCause_ = EndCause::none;
    runStop_ = std::stop_source();
    transferTimer_.start();

    SyncRunCallbacks callbacks;
    callbacks.progress = [model = self_, run = ++runNumber_](int completed, int total) {
        if (model && model->runNumber_ == run && model->isSyncing_)
            model->publishProgress(completed, total);
    };
    callbacks.passEnded = [this] { post([this] { refreshState(); }); };
    runTasks_.post([this, callbacks, session = session_, run = runNumber_, source = runStop_,
                    deletionEnabled = isAutoDeleteEnabled_](const std::stop_token& end) {
        const std::stop_callback onEnd(end, [source]() mutable { source.request_stop(); });
        const SyncRunOutcome outcome = runLocked(*session, s_.db, deletionEnabled, callbacks,
                                                 s_.acquireRunLock, source.get_token());
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
    if (outcome.wasStopped && endCause_ == EndCause::none)
        endCause_ = EndCause::albumFull; // nobody else stops a run
    const bool isFailed = outcome.hasFailed() || endCause_ == EndCause::albumFull;
    if (!outcome.error)
        lastSyncTime_ = s_.clock.now();
    isLastRunComplete_ = !isFailed && !outcome.wasStopped && outcome.verified > 0 &&
                         outcome.failed + outcome.undated == 0;
    isSyncing_ = false;
    syncState_ = isFailed ? SyncVisualState::error : SyncVisualState::idle;
    Q_EMIT syncChanged();
    if (outcome.error)
        publish(errorMessage_, *outcome.error, &MenuBarViewModel::errorMessageChanged);
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
        : outcome.failed > 0
            ? grouped(outcome.failed) + QStringLiteral(" öğe aktarılamadı (tekrar denenecek)")
            : statusMessage_;
    publish(statusMessage_, message, &MenuBarViewModel::statusMessageChanged);
    if (endCause_ != EndCause::none)
        return;
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

// Source and target.

void MenuBarViewModel::selectSourceAlbum(const QString& id) {
    const auto album = std::ranges::find(localAlbums_, id, &LocalAlbumItem::id);
    if (isSyncing_ || !session_ || (!id.isEmpty() && album == localAlbums_.end()))
        return;
    const QString title = id.isEmpty() ? Route().sourceTitle : album->title;
    store([&] {
        session_->albums.setSelectedSourceAlbumID(id.isEmpty() ? std::nullopt : std::optional(id));
        s_.preferences.setString(preferenceKeys::sourceAlbumTitle, title);
    });
    publishRoute();
    s_.console.print(QStringLiteral("[PhotoKit] Kaynak albüm değişti, yeniden taranıyor..."));
    // In the runs' order: a run that begins after the choice sees nothing of the earlier source.
    runTasks_.post([this, session = session_](const std::stop_token& end) {
        try {
            s_.db.clearPendingRecords();
            session->observer.initialScan(end);
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Kaynak taranamadı: ") +
                       error.localizedDescription());
        }
        post([this] { refreshState(); });
    });
}

void MenuBarViewModel::selectTargetAlbum(const QString& id) {
    const auto album = std::ranges::find(googleAlbums_, id, &GoogleAlbum::id);
    if (isSyncing_ || (!id.isEmpty() && album == googleAlbums_.end()))
        return;
    store(
        [&] { s_.albums.selectTargetAlbum(id.isEmpty() ? std::nullopt : std::optional(*album)); });
    publishRoute();
}

void MenuBarViewModel::loadGoogleAlbums() {
    if (isLoadingGoogleAlbums_)
        return;
    publish(isLoadingGoogleAlbums_, true, &MenuBarViewModel::googleAlbumsChanged);
    googleTasks_.post([this](const std::stop_token& end) {
        std::optional<std::vector<GoogleAlbum>> albums;
        try {
            albums = s_.albums.listAlbums(end);
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Google albümleri alınamadı: ") +
                       error.localizedDescription());
        }
        const bool lacksScopes = s_.albums.hasInsufficientScopes();
        post([this, albums, lacksScopes] {
            isLoadingGoogleAlbums_ = false;
            knowsGoogleAlbums_ = true; // also after a failure: the person asks again
            if (albums) {
                googleAlbums_ = *albums;
                hasInsufficientAlbumScopes_ = lacksScopes;
                s_.log.log(QStringLiteral("[MenuBarViewModel] %1 Google albümü yüklendi "
                                          "(scopeEksik: %2)")
                               .arg(albums->size())
                               .arg(boolText(lacksScopes)));
            }
            Q_EMIT googleAlbumsChanged();
        });
    });
}

QString MenuBarViewModel::nextPartTitle(const QString& title) const {
    return GoogleAlbumManager::nextPartTitle(title);
}

QString MenuBarViewModel::suggestNewAlbumTitle() const {
    return route_.targetID.isEmpty() ? QString() : nextPartTitle(route_.targetTitle);
}

/// Makes the album in the background; `created` and `failed` are called on the main thread.
void MenuBarViewModel::createAlbum(const QString& title,
                                   std::function<void(const GoogleAlbum&)> created,
                                   std::function<void(const QString&)> failed) {
    dismissError();
    googleTasks_.post([this, title, created = std::move(created),
                       failed = std::move(failed)](const std::stop_token& end) {
        try {
            const GoogleAlbum album = s_.albums.createAlbum(title, end);
            post([this, album, created] {
                std::erase_if(googleAlbums_,
                              [&](const GoogleAlbum& known) { return known.id == album.id; });
                googleAlbums_.push_back(album);
                Q_EMIT googleAlbumsChanged();
                publishRoute();
                created(album);
            });
        } catch (const Error& error) {
            post([failed, text = error.localizedDescription()] { failed(text); });
        }
    });
}

void MenuBarViewModel::createGoogleAlbum(const QString& title) {
    const QString trimmed = title.trimmed();
    if (trimmed.isEmpty())
        return;
    createAlbum(
        trimmed,
        [this](const GoogleAlbum& album) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Yeni albüm oluşturuldu ve seçildi: ") +
                       album.title.value_or(QString()));
        },
        [this](const QString& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Albüm oluşturma hatası: ") + error);
            publish(errorMessage_, QStringLiteral("Albüm oluşturulamadı: ") + error,
                    &MenuBarViewModel::errorMessageChanged);
        });
}

// The album limit.

void MenuBarViewModel::dismissPreSync20kAlert() {
    publish(preSync_, PreSync(), &MenuBarViewModel::sheetsChanged);
}

void MenuBarViewModel::dismissAlbumLimitAlert() {
    publish(showAlbumLimitAlert_, false, &MenuBarViewModel::sheetsChanged);
}

void MenuBarViewModel::confirmPreSyncAutoRollover() {
    confirmPreSync(true);
}

void MenuBarViewModel::confirmPreSyncStopAtLimit() {
    confirmPreSync(false);
}

void MenuBarViewModel::confirmPreSync(bool rollsOver) {
    dismissPreSync20kAlert();
    store([&] {
        s_.preferences.setBoolean(preferenceKeys::autoRolloverOnLimit, rollsOver);
        s_.preferences.setBoolean(preferenceKeys::stopAtLimit, !rollsOver);
    });
    if (!isSyncing_)
        executeSyncLoop();
}

void MenuBarViewModel::handleAlbumLimitReached() {
    endCause_ = EndCause::albumFull;
    runStop_.request_stop();
    setRunning(false, SyncVisualState::error);
    publish(statusMessage_, albumFullMessage, &MenuBarViewModel::statusMessageChanged);
    albumLimitAlertMessage_ =
        QStringLiteral("Hedef albümünüz (") + route_.targetTitle +
        QStringLiteral(") maksimum 20.000 medya kapasitesine ulaştı. '") +
        nextPartTitle(route_.targetTitle) +
        QStringLiteral("' oluşturup aktarıma kesintisiz devam etmek ister misiniz?");
    showAlbumLimitAlert_ = true;
    Q_EMIT sheetsChanged();
    notifyPerson(albumFullMessage, albumLimitAlertMessage_);
}

void MenuBarViewModel::createNextPartAlbumAndResume() {
    dismissAlbumLimitAlert();
    createAlbum(
        nextPartTitle(route_.targetTitle),
        [this](const GoogleAlbum& album) {
            s_.log.log(
                QStringLiteral("[MenuBarViewModel] 🎯 Parça albümü oluşturuldu ve seçildi: ") +
                album.title.value_or(QString()));
            if (!isSyncing_)
                executeSyncLoop();
        },
        [this](const QString& error) {
            s_.log.log(
                QStringLiteral("[MenuBarViewModel] ⚠️ Parça albümü oluşturulamadı: ") +
                error);
            publish(errorMessage_, QStringLiteral("Yeni albüm oluşturulamadı: ") + error,
                    &MenuBarViewModel::errorMessageChanged);
        });
}

// Quarantine.

void MenuBarViewModel::retryQuarantinedItems(const QString& rawMode) {
    const DateFallbackMode mode =
        dateFallbackModeFrom(rawMode).value_or(DateFallbackMode::strictNone);
    store([&] { s_.preferences.setString(preferenceKeys::dateFallbackMode, rawValue(mode)); });
    Q_EMIT settingsChanged();
    stateTasks_.post([this, mode](const std::stop_token&) {
        try {
            s_.db.retryFailedRecords(true);
            if (mode != DateFallbackMode::strictNone)
                s_.db.retryDateUnresolvedRecords();
        } catch (const DBError& error) {
            s_.log.log(
                QStringLiteral("[MenuBarViewModel] Karantina sıfırlama hatası (date fallback): ") +
                error.localizedDescription());
        }
        post([this] { refreshState(); });
    });
}

} // namespace quorvane
