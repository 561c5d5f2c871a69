#include "ui/AlbumLimit.h"
#include "ui/MenuBarViewModel.h"

/// The album limit, which source and target are chosen, and the quarantine.
namespace quorvane {

// Source and target.

void MenuBarViewModel::selectSourceAlbum(const QString& id) {
    if (isSyncing() || !route_.selectSource(id))
        return;
    s_.console.print(QStringLiteral("[PhotoKit] Kaynak albüm değişti, yeniden taranıyor..."));
    // In the runs' order: a run that begins after the choice sees nothing of the earlier source.
    run_.post([this, session = session_](const std::stop_token& end) {
        try {
            session->life.cleared();
            session->run.observer.initialScan(end);
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Kaynak taranamadı: ") +
                       error.localizedDescription());
        }
        post([this] { refreshState(); });
    });
}

void MenuBarViewModel::selectTargetAlbum(const QString& id) {
    if (!isSyncing())
        route_.selectTarget(id);
}

QString MenuBarViewModel::suggestNewAlbumTitle() const {
    return selectedTargetAlbumID().isEmpty()
               ? QString()
               : GoogleAlbumManager::nextPartTitle(selectedTargetAlbumTitle());
}

void MenuBarViewModel::createGoogleAlbum(const QString& title) {
    const QString trimmed = title.trimmed();
    if (trimmed.isEmpty())
        return;
    dismissError();
    route_.createAlbum(
        trimmed,
        [this](const GoogleAlbum& album) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Yeni albüm oluşturuldu ve seçildi: ") +
                       album.title.value_or(QString()));
        },
        [this](const QString& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Albüm oluşturma hatası: ") + error);
            showError(QStringLiteral("Albüm oluşturulamadı: ") + error);
        });
}

// The album limit.

void MenuBarViewModel::triggerSync() {
    if (isSyncing())
        return;
    const GoogleAlbum* album = route_.targetAlbum();
    const QString title = album == nullptr ? QString() : album->title.value_or(QString());
    if (album != nullptr && albumLimit::wouldOverflow(album->itemCount(), pendingCount())) {
        publish(preSync_,
                PreSync{true, title, GoogleAlbumManager::nextPartTitle(title), album->itemCount(),
                        pendingCount()},
                &MenuBarViewModel::sheetsChanged);
        return;
    }
    if (!route_.isTargetFull())
        return executeSyncLoop();
    run_.set({.phase = RunState::Phase::ended, .end = RunState::End::albumFull});
    showAlbumLimit(QStringLiteral("Seçili Google Photos albümü (") + title +
                   QStringLiteral(") 20.000 medya sınırına ulaştı (%1/20.000)! Lütfen yeni bir "
                                  "albüm oluşturun veya başka bir albüm seçin.")
                       .arg(groupedCount(album->itemCount())));
}

void MenuBarViewModel::showAlbumLimit(const QString& message) {
    albumLimitAlertMessage_ = message;
    showAlbumLimitAlert_ = true;
    Q_EMIT sheetsChanged();
}

void MenuBarViewModel::dismissPreSync20kAlert() {
    publish(preSync_, PreSync(), &MenuBarViewModel::sheetsChanged);
}

void MenuBarViewModel::dismissAlbumLimitAlert() {
    publish(showAlbumLimitAlert_, false, &MenuBarViewModel::sheetsChanged);
}

void MenuBarViewModel::confirmPreSync(bool rollsOver) {
    dismissPreSync20kAlert();
    settings_.store([&] {
        s_.preferences.setBoolean(preferenceKeys::autoRolloverOnLimit, rollsOver);
        s_.preferences.setBoolean(preferenceKeys::stopAtLimit, !rollsOver);
    });
    if (!isSyncing())
        executeSyncLoop();
}

void MenuBarViewModel::albumLimitReached() {
    run_.end({.phase = RunState::Phase::ended, .end = RunState::End::albumFull});
    say(albumFullText);
    const QString& title = selectedTargetAlbumTitle();
    showAlbumLimit(QStringLiteral("Hedef albümünüz (") + title +
                   QStringLiteral(") maksimum 20.000 medya kapasitesine ulaştı. '") +
                   GoogleAlbumManager::nextPartTitle(title) +
                   QStringLiteral("' oluşturup aktarıma kesintisiz devam etmek ister misiniz?"));
    settings_.notify({albumFullText, albumLimitAlertMessage_});
}

void MenuBarViewModel::createNextPartAlbumAndResume() {
    dismissAlbumLimitAlert();
    dismissError();
    route_.createAlbum(
        GoogleAlbumManager::nextPartTitle(selectedTargetAlbumTitle()),
        [this](const GoogleAlbum& album) {
            s_.log.log(
                QStringLiteral("[MenuBarViewModel] 🎯 Parça albümü oluşturuldu ve seçildi: ") +
                album.title.value_or(QString()));
            if (!isSyncing())
                executeSyncLoop();
        },
        [this](const QString& error) {
            s_.log.log(
                QStringLiteral("[MenuBarViewModel] ⚠️ Parça albümü oluşturulamadı: ") +
                error);
            showError(QStringLiteral("Yeni albüm oluşturulamadı: ") + error);
        });
}

// Quarantine.

void MenuBarViewModel::retryQuarantinedItems(const QString& rawMode, bool sendsUndatable) {
    const DateFallbackMode mode =
        dateFallbackModeFrom(rawMode).value_or(DateFallbackMode::strictNone);
    settings_.setDateFallbackMode(mode);
    if (!session_)
        return;
    stateTasks_.post([this, mode, sendsUndatable, session = session_](const std::stop_token&) {
        try {
            session->life.retriedFailed(true);
            if (mode != DateFallbackMode::strictNone)
                session->life.retriedUndated();
            if (sendsUndatable)
                session->life.undatableReleased();
        } catch (const DBError& error) {
            s_.log.log(
                QStringLiteral("[MenuBarViewModel] Karantina sıfırlama hatası (date fallback): ") +
                error.localizedDescription());
        }
        post([this] { refreshState(); });
    });
}

} // namespace quorvane
