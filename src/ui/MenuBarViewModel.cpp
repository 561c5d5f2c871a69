#include "ui/MenuBarViewModel.h"

#include "ui/AlbumLimit.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>

namespace quorvane {

namespace {

constexpr int transferInterval = 250; // milliseconds between two looks at the transfers
constexpr int samplesToACount = 8;    // the records are counted anew every two seconds of a run

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
    connect(&s_.trash, &TrashQuestion::asked, this, &MenuBarViewModel::askAboutTrash);
    connect(this, &MenuBarViewModel::routeChanged, this, &MenuBarViewModel::localAlbumsChanged);
    if (const auto last = services.preferences.number(preferenceKeys::lastSyncTime); last > 0)
        lastSyncTime_ = Date(std::chrono::milliseconds(last));
    transferTimer_.setInterval(transferInterval);
    connect(&transferTimer_, &QTimer::timeout, this, &MenuBarViewModel::sampleTransfers);
    refreshState();
}

void MenuBarViewModel::setLibrary(std::shared_ptr<const LibrarySession> session) {
    const bool isSame = session_ && session && session_->root == session->root;
    const bool wasSyncing = isSyncing();
    if (wasSyncing)
        endRun({.phase = RunState::Phase::ended, .end = RunState::End::stopped});
    session_ = std::move(session);
    away_.reset();
    albumLimit_ = !session_ ? Subscription()
                            : session_->run.batches.googlePhotosAlbumLimitReached.subscribe(
                                  [this](const AlbumLimitReached&) { handleAlbumLimitReached(); });
    isLibraryStale_ = true;
    publish(localAlbums_, {}, &MenuBarViewModel::localAlbumsChanged);
    Q_EMIT routeChanged();
    if (!wasSyncing)
        showLastRun();
    const bool goesOn = (wasSyncing && isSame) ||
                        (runState_.fault && runState_.fault->code == FaultCode::libraryAway);
    refreshThen([this, goesOn, session = session_] {
        if (goesOn && session == session_ && account_.isSignedIn)
            executeSyncLoop();
    });
}

void MenuBarViewModel::setLibraryAway(const AwayLibrary& library) {
    away_ = library;
    if (!session_)
        publish(counts_, {library.counts, {}}, &MenuBarViewModel::countsChanged);
    updateState();
    Q_EMIT routeChanged();
}

// The state. Whatever it follows from changes here or is published, and it follows.

ProductFacts MenuBarViewModel::facts() const {
    using Library = ProductFacts::Library;
    return {.isSignedIn = account_.isSignedIn || account_.isLapsed,
            .library = away_      ? Library::away
                       : session_ ? Library::open
                                  : Library::none,
            .pending = counts_.records.pending,
            .verified = counts_.records.verified,
            .failed = counts_.records.failed,
            .undated = counts_.records.undated,
            .run = runState_};
}

void MenuBarViewModel::updateState() {
    state_ = productState(facts());
    Q_EMIT stateChanged();
}

void MenuBarViewModel::setRun(const RunState& state) {
    if (state.phase == RunState::Phase::waiting && runState_.phase != RunState::Phase::waiting)
        waitingSince_ = s_.clock.now();
    if (state.phase != runState_.phase)
        paceSince_.reset();
    runState_ = state;
    hasSessionEnded_ = runState_.needsSignIn();
    if (hasSessionEnded_)
        publish(account_, {false, true, account_.userEmail}, &MenuBarViewModel::accountChanged);
    updateState();
    Q_EMIT syncChanged();
}

/// What kept the latest run from its work, in whatever process, stands until another one has run.
void MenuBarViewModel::showLastRun() {
    const RunState last = session_ ? session_->run.stateFile.last() : RunState();
    const bool wasKept =
        last.phase == RunState::Phase::ended && (last.fault || !last.error.isEmpty());
    setRun(wasKept ? last : RunState());
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
                post([this, number, account, counts, session] {
                    if (session == session_)
                        publishState(number, account, counts);
                    else
                        refreshState(); // read of a library that is another now
                });
            });
    }
    if (then)
        afterRefresh_.emplace_back(refreshNumber_, std::move(then));
}

MenuBarViewModel::Account MenuBarViewModel::readAccount() {
    const bool hasEnded = hasSessionEnded_;
    Account account{s_.oauth.isSignedIn() && !hasEnded, hasEnded, {}};
    if (account.isSignedIn || hasEnded)
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
    if (away_ && !session_)
        counts.records = away_->counts;
    if (ended(RunState::End::complete) && counts.records.pending > 0)
        setRun({}); // something new is there
    publish(account_, std::move(account), &MenuBarViewModel::accountChanged);
    publish(counts_, std::move(counts), &MenuBarViewModel::countsChanged);
    updateState();
    publish(statusMessage_,
            runState_.phase == RunState::Phase::waiting ? runState_.text()
                                                        : pendingText(counts_.records.pending),
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
    if (!enabled)
        s_.trash.forget();
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
    const bool isIdle = !isSyncing() && now.items.empty();
    const double before = speed_.current();
    if (isIdle)
        speed_.rest();
    else
        speed_.sample(now.sentBytes, s_.clock.monotonic());
    const bool hasChanged = now.items != transfers_.items || before != speed_.current() ||
                            now.latencyMilliseconds != transfers_.latencyMilliseconds;
    transfers_ = std::move(now);
    if (hasChanged)
        Q_EMIT transfersChanged();
    if (isIdle)
        transferTimer_.stop();
    else if (++samples_ % samplesToACount == 0)
        refreshState();
}

QString MenuBarViewModel::currentUploadSpeedString() const {
    return TransferActivityTracker::formatSpeed(speed_.current());
}

QString MenuBarViewModel::peakUploadSpeedString() const {
    return TransferActivityTracker::formatSpeed(speed_.peak());
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
