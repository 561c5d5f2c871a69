#include "ui/AlbumLimit.h"
#include "ui/MenuBarViewModel.h"

#include <algorithm>

/// Where pictures come from and where they go, the album limit, and the quarantine.
namespace quorvane {

namespace {

QString boolText(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

// Source and target.

void MenuBarViewModel::selectSourceAlbum(const QString& id) {
    const auto album = std::ranges::find(localAlbums_, id, &LocalAlbumItem::id);
    if (isSyncing() || !session_ || (!id.isEmpty() && album == localAlbums_.end()))
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
    const auto album = std::ranges::find(googleAlbums_, id, &GoogleAlbum::id);
    if (isSyncing() || (!id.isEmpty() && album == googleAlbums_.end()))
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
        const bool lacksScopes = s_.albums.lacksReadPermission();
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
    if (!isSyncing())
        executeSyncLoop();
}

void MenuBarViewModel::handleAlbumLimitReached() {
    endRun({.phase = RunState::Phase::ended, .end = RunState::End::albumFull});
    publish(statusMessage_, albumFullText, &MenuBarViewModel::statusMessageChanged);
    albumLimitAlertMessage_ =
        QStringLiteral("Hedef albümünüz (") + route_.targetTitle +
        QStringLiteral(") maksimum 20.000 medya kapasitesine ulaştı. '") +
        nextPartTitle(route_.targetTitle) +
        QStringLiteral("' oluşturup aktarıma kesintisiz devam etmek ister misiniz?");
    showAlbumLimitAlert_ = true;
    Q_EMIT sheetsChanged();
    notifyPerson(albumFullText, albumLimitAlertMessage_);
}

void MenuBarViewModel::createNextPartAlbumAndResume() {
    dismissAlbumLimitAlert();
    createAlbum(
        nextPartTitle(route_.targetTitle),
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
            publish(errorMessage_, QStringLiteral("Yeni albüm oluşturulamadı: ") + error,
                    &MenuBarViewModel::errorMessageChanged);
        });
}

// Quarantine.

void MenuBarViewModel::retryQuarantinedItems(const QString& rawMode, bool sendsUndatable) {
    const DateFallbackMode mode =
        dateFallbackModeFrom(rawMode).value_or(DateFallbackMode::strictNone);
    store([&] { s_.preferences.setString(preferenceKeys::dateFallbackMode, rawValue(mode)); });
    Q_EMIT settingsChanged();
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
