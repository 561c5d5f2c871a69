#include "ui/MenuBarViewModel.h"

#include "ui/AlbumLimit.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>

namespace quorvane {

namespace {

constexpr int transferInterval = 250; // milliseconds between two looks at the transfers

QString storedOr(const Preferences& preferences, const QString& key, const QString& fallback) {
    const QString value = preferences.string(key).value_or(QString());
    return value.isEmpty() ? fallback : value;
}

} // namespace

MenuBarViewModel::MenuBarViewModel(const Services& services,
                                   const std::vector<LogEntry>& earlierLog)
    : s_(services),
      isAutoDeleteEnabled_(services.preferences.boolean(preferenceKeys::isAutoDeleteEnabled)),
      appTheme_(
          appThemeFrom(services.preferences.string(preferenceKeys::appTheme).value_or(QString()))),
      transfers_(services.tracker.getSnapshot()),
      recentLogs_(earlierLog, services.logPublisher),
      sessionCheck_(services.checkSession, services.clock) {
    for (const Signal source :
         {&MenuBarViewModel::routeChanged, &MenuBarViewModel::googleAlbumsChanged})
        connect(this, source, this, &MenuBarViewModel::targetChanged);
    connect(this, &MenuBarViewModel::routeChanged, this, &MenuBarViewModel::localAlbumsChanged);
    transferTimer_.setInterval(transferInterval);
    connect(&transferTimer_, &QTimer::timeout, this, &MenuBarViewModel::sampleTransfers);
    refreshState();
}

void MenuBarViewModel::setLibrary(std::shared_ptr<const LibrarySession> session) {
    if (isSyncing_)
        stopSync();
    session_ = std::move(session);
    albumLimit_ = !session_ ? Subscription()
                            : session_->run.batches.googlePhotosAlbumLimitReached.subscribe(
                                  [this](const AlbumLimitReached&) { handleAlbumLimitReached(); });
    isLibraryStale_ = true;
    publish(localAlbums_, {}, &MenuBarViewModel::localAlbumsChanged);
    Q_EMIT routeChanged();
    showLastRun();
    refreshState();
}

/// What kept the latest run from its work, in whatever process, stands until another one has run.
void MenuBarViewModel::showLastRun() {
    const RunState last = session_ ? session_->run.stateFile.last() : RunState();
    const bool wasKept =
        last.phase == RunState::Phase::ended && (last.fault || !last.error.isEmpty());
    runState_ = wasKept ? last : RunState();
    hasSessionEnded_ = runState_.needsSignIn();
    setRunning(false, wasKept ? SyncVisualState::error : SyncVisualState::idle);
}

bool MenuBarViewModel::isWorking() {
    return !(stateTasks_.isIdle() && libraryTasks_.isIdle() && googleTasks_.isIdle() &&
             runTasks_.isIdle());
}

void MenuBarViewModel::libraryDidChange() {
    isLibraryStale_ = true;
    hasLibraryChanged_ = true;
    refreshState();
}

// Refreshing. One thread reads, in the order of asking, so no reading is published after a later
// one. What is asked for while a reading still waits to begin is served by that reading.

void MenuBarViewModel::refreshState() {
    refreshThen({});
}

void MenuBarViewModel::refreshThen(std::function<void()> then) {
    publishRoute();
    countLibrary();
    if (!isRefreshWaiting_.exchange(true)) {
        stateTasks_.post(
            [this, session = session_, number = ++refreshNumber_](const std::stop_token&) {
                isRefreshWaiting_ = false;
                const Account account = readAccount();
                const Counts counts = session ? readCounts(session->run.db) : Counts();
                post([this, number, account, counts] { publishState(number, account, counts); });
            });
    }
    if (then)
        afterRefresh_.emplace_back(refreshNumber_, std::move(then));
}

MenuBarViewModel::Account MenuBarViewModel::readAccount() {
    Account account{s_.oauth.isSignedIn() && !hasSessionEnded_, {}};
    if (account.isSignedIn)
        account.userEmail = s_.oauth.email().value_or(QString());
    return account;
}

MenuBarViewModel::Counts MenuBarViewModel::readCounts(DatabaseManager& db) {
    Counts counts;
    try {
        counts.records = StoreCounts::of(db);
        counts.categories = db.fetchFailedCategorySummaries();
    } catch (const DBError&) { // NOLINT(bugprone-empty-catch)
        // A store that is busy or broken reads as empty: the display must not fail with it.
    }
    return counts;
}

void MenuBarViewModel::publishRoute() {
    const auto text = [&](const QString& key, const QString& fallback) {
        return storedOr(s_.preferences, key, fallback);
    };
    const Route none;
    const bool isForeign = session_ && !session_->albums.ownsSelectedSource();
    publish(route_,
            Route{isForeign ? none.sourceID : text(preferenceKeys::sourceAlbumID, {}),
                  isForeign ? none.sourceTitle
                            : text(preferenceKeys::sourceAlbumTitle, none.sourceTitle),
                  text(preferenceKeys::targetAlbumID, {}),
                  text(preferenceKeys::targetAlbumTitle, none.targetTitle)},
            &MenuBarViewModel::routeChanged);
}

void MenuBarViewModel::publishState(int refresh, Account account, Counts counts) {
    publish(account_, std::move(account), &MenuBarViewModel::accountChanged);
    publish(counts_, std::move(counts), &MenuBarViewModel::countsChanged);
    if (isSyncing_ && runState_.phase == RunState::Phase::waiting)
        publish(statusMessage_, runState_.text(), &MenuBarViewModel::statusMessageChanged);
    else
        publish(statusMessage_,
                counts_.records.pending < 1 ? QStringLiteral("Arşiviniz güncel ve güvende")
                                            : QLocale().toString(counts_.records.pending) +
                                                  QStringLiteral(" yeni öğe eşitlenmeyi bekliyor"),
                &MenuBarViewModel::statusMessageChanged);
    if (account_.isSignedIn && googleAlbums_.empty() && !isLoadingGoogleAlbums_ &&
        !knowsGoogleAlbums_)
        loadGoogleAlbums();

    std::vector<std::function<void()>> due;
    std::erase_if(afterRefresh_, [&](auto& waiting) {
        if (waiting.first > refresh)
            return false;
        due.push_back(std::move(waiting.second));
        return true;
    });
    for (const auto& then : due)
        then();
}

/// Albums and the total are read when the library is opened and when it changed: on a large library
/// that takes seconds.
void MenuBarViewModel::countLibrary() {
    if (!session_ || !isLibraryStale_)
        return;
    isLibraryStale_ = false;
    libraryTasks_.post([this, session = session_,
                        isAnew = std::exchange(hasLibraryChanged_, false)](const std::stop_token&) {
        try {
            std::vector<LocalAlbumItem> albums = session->albums.cachedAlbums();
            if (albums.empty() || isAnew)
                albums = session->albums.performFetchLocalAlbums();
            post([this, session, albums = std::move(albums)] {
                if (session == session_)
                    publish(localAlbums_, albums, &MenuBarViewModel::localAlbumsChanged);
            });
            const AuthorizationStatus status = session->run.library.authorizationStatus();
            if (status != AuthorizationStatus::authorized && status != AuthorizationStatus::limited)
                return;
            const int total = static_cast<int>(session->run.library.fetchAssets()->size());
            post([this, session, total] {
                if (session == session_)
                    publish(totalPhotoCount_, total, &MenuBarViewModel::localAlbumsChanged);
            });
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Kitaplık okunamadı: ") +
                       error.localizedDescription());
        }
    });
}

// Derived values.

QString MenuBarViewModel::lastSyncTimeString() const {
    if (!lastSyncTime_)
        return QStringLiteral("Henüz yok");
    const auto time = QDateTime::fromMSecsSinceEpoch(lastSyncTime_->time_since_epoch().count());
    return QLocale().toString(time.time(), QLocale::ShortFormat);
}

double MenuBarViewModel::syncProgressFraction() const {
    return syncTotalCount_ < 1 ? 0 : std::min(1.0, double(syncCompletedCount_) / syncTotalCount_);
}

double MenuBarViewModel::syncProgressPercentage() const {
    return syncTotalCount_ < 1 ? 0 : double(syncCompletedCount_) / syncTotalCount_ * 100;
}

int MenuBarViewModel::selectedSourceCount() const {
    const auto selected = std::ranges::find(localAlbums_, route_.sourceID, &LocalAlbumItem::id);
    return selected == localAlbums_.end() ? totalPhotoCount_ : selected->count;
}

const GoogleAlbum* MenuBarViewModel::selectedTargetAlbum() const {
    if (route_.targetID.isEmpty())
        return nullptr;
    const auto selected = std::ranges::find(googleAlbums_, route_.targetID, &GoogleAlbum::id);
    return selected == googleAlbums_.end() ? nullptr : &*selected;
}

bool MenuBarViewModel::isSelectedTargetAlbumFull() const {
    const GoogleAlbum* album = selectedTargetAlbum();
    return album != nullptr && albumLimit::isFull(album->itemCount());
}

bool MenuBarViewModel::isSelectedTargetAlbumNearLimit() const {
    const GoogleAlbum* album = selectedTargetAlbum();
    return album != nullptr && albumLimit::isNear(album->itemCount());
}

QString MenuBarViewModel::selectedTargetAlbumCountString() const {
    const GoogleAlbum* album = selectedTargetAlbum();
    return album == nullptr ? QString()
                            : album->formattedCountString() + QStringLiteral(" / 20.000");
}

// Settings.

void MenuBarViewModel::store(const std::function<void()>& write) {
    try {
        write();
    } catch (const Error& error) {
        publish(errorMessage_,
                QStringLiteral("Ayar kaydedilemedi: ") + error.localizedDescription(),
                &MenuBarViewModel::errorMessageChanged);
    }
}

void MenuBarViewModel::setAutoDeleteEnabled(bool enabled) {
    if (enabled == isAutoDeleteEnabled_)
        return;
    store([&] { s_.preferences.setBoolean(preferenceKeys::isAutoDeleteEnabled, enabled); });
    s_.log.log(
        QStringLiteral("[MenuBarViewModel] 🗑️ Otomatik temizlik tercihi güncellendi: ") +
        (enabled ? QStringLiteral("true") : QStringLiteral("false")));
    publish(isAutoDeleteEnabled_, enabled, &MenuBarViewModel::settingsChanged);
}

void MenuBarViewModel::setAppTheme(AppTheme theme) {
    if (theme == appTheme_)
        return;
    store([&] { s_.preferences.setString(preferenceKeys::appTheme, rawValue(theme)); });
    s_.log.log(QStringLiteral("[MenuBarViewModel] 🎨 Tema tercihi güncellendi: ") + rawValue(theme));
    publish(appTheme_, theme, &MenuBarViewModel::settingsChanged);
}

bool MenuBarViewModel::areNotificationsEnabled() const {
    return !s_.preferences.boolean(preferenceKeys::notificationsMuted);
}

void MenuBarViewModel::setNotificationsEnabled(bool enabled) {
    store([&] { s_.preferences.setBoolean(preferenceKeys::notificationsMuted, !enabled); });
    Q_EMIT settingsChanged();
}

bool MenuBarViewModel::startsAtLogin() const {
    return s_.desktop.startsAtLogin();
}

void MenuBarViewModel::setStartsAtLogin(bool starts) {
    s_.desktop.setStartsAtLogin(starts);
    Q_EMIT settingsChanged();
}

QString MenuBarViewModel::dateFallbackMode() const {
    const auto stored = s_.preferences.string(preferenceKeys::dateFallbackMode);
    return rawValue(
        dateFallbackModeFrom(stored.value_or(QString())).value_or(DateFallbackMode::strictNone));
}

void MenuBarViewModel::notifyPerson(const QString& title, const QString& text) {
    if (areNotificationsEnabled())
        s_.desktop.notify(title, text);
}

// The inspector. It is looked after only while something moves.

void MenuBarViewModel::sampleTransfers() {
    TransferSnapshot now = s_.tracker.getSnapshot();
    const bool isIdle = !isSyncing_ && now.items.empty();
    const bool hasChanged = now.items != transfers_.items ||
                            now.currentSpeedText != transfers_.currentSpeedText ||
                            now.peakSpeedText != transfers_.peakSpeedText ||
                            now.latencyMilliseconds != transfers_.latencyMilliseconds;
    transfers_ = std::move(now);
    if (hasChanged)
        Q_EMIT transfersChanged();
    if (isIdle)
        transferTimer_.stop();
}

void MenuBarViewModel::toggleInspector() {
    isInspectorOpen_ = !isInspectorOpen_;
    Q_EMIT inspectorToggled();
}

void MenuBarViewModel::setShowQuarantineSheet(bool show) {
    publish(showQuarantineSheet_, show, &MenuBarViewModel::sheetsChanged);
}

void MenuBarViewModel::openLogFile() {
    s_.desktop.open(s_.logFile);
}

void MenuBarViewModel::dismissError() {
    publish(errorMessage_, {}, &MenuBarViewModel::errorMessageChanged);
}

} // namespace quorvane
