#include "ui/MenuBarViewModel.h"

#include <QLocale>

#include <algorithm>

namespace quorvane {

namespace {

QDateTime timeOf(Date date) {
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count());
}

} // namespace

MenuBarViewModel::MenuBarViewModel(const Services& services,
                                   const std::vector<LogEntry>& earlierLog)
    : s_(services),
      settings_({services.preferences, services.log, services.desktop}),
      account_({services.oauth, services.preferences, services.log, services.handOverURL}),
      route_({services.albums, services.preferences, services.log, settings_}),
      run_({services.tracker, services.clock, services.acquireRunLock}),
      recentLogs_(earlierLog, services.logPublisher),
      sessionCheck_(services.checkSession, services.clock) {
    connectModels();
    if (const auto last = services.preferences.number(preferenceKeys::lastSyncTime); last > 0)
        lastSyncTime_ = Date(std::chrono::milliseconds(last));
    refreshState();
}

void MenuBarViewModel::connectModels() {
    using Self = MenuBarViewModel;
    connect(&settings_, &SettingsModel::changed, this, &Self::settingsChanged);
    connect(&settings_, &SettingsModel::failed, this, &Self::showError);
    connect(&account_, &AccountModel::changed, this, &Self::accountChanged);
    connect(&account_, &AccountModel::failed, this, &Self::showError);
    connect(&account_, &AccountModel::signedIn, this, &Self::signedIn);
    connect(&account_, &AccountModel::signedOut, this, &Self::signedOut);
    connect(&route_, &RouteModel::changed, this, &Self::routeChanged);
    connect(&route_, &RouteModel::changed, this, &Self::localAlbumsChanged);
    connect(&route_, &RouteModel::localAlbumsChanged, this, &Self::localAlbumsChanged);
    connect(&route_, &RouteModel::googleAlbumsChanged, this, &Self::googleAlbumsChanged);
    connect(&run_, &RunModel::changed, this, &Self::runChanged);
    connect(&run_, &RunModel::progressChanged, this, &Self::progressChanged);
    connect(&run_, &RunModel::transfersChanged, this, &Self::transfersChanged);
    connect(&run_, &RunModel::countsChanged, this, &Self::refreshState);
    connect(&run_, &RunModel::finished, this, &Self::runFinished);
    connect(&s_.trash, &TrashQuestion::asked, this, &Self::askAboutTrash);
}

bool MenuBarViewModel::isWorking() {
    return !stateTasks_.isIdle() || account_.isWorking() || route_.isWorking() || run_.isWorking();
}

// The library.

void MenuBarViewModel::setLibrary(std::shared_ptr<const LibrarySession> session) {
    const bool isSame = session_ && session && session_->root == session->root;
    const bool wasSyncing = isSyncing();
    if (wasSyncing)
        run_.end({.phase = RunState::Phase::ended, .end = RunState::End::stopped});
    session_ = std::move(session);
    away_.reset();
    albumLimit_ = !session_ ? Subscription()
                            : session_->run.batches.googlePhotosAlbumLimitReached.subscribe(
                                  [this](const AlbumLimitReached&) { albumLimitReached(); });
    route_.setLibrary(session_);
    if (!wasSyncing)
        showLastRun();
    const bool goesOn = (wasSyncing && isSame) ||
                        (run_.state().fault && run_.state().fault->code == FaultCode::libraryAway);
    refreshThen([this, goesOn, opened = session_] {
        if (goesOn && opened == session_ && isSignedIn())
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

void MenuBarViewModel::libraryDidChange() {
    route_.libraryDidChange();
    refreshState();
}

// The state. Whatever it follows from changes here or is published, and it follows.

ProductFacts MenuBarViewModel::facts() const {
    using Library = ProductFacts::Library;
    return {.isSignedIn = isSignedIn() || account_.account().isLapsed,
            .library = away_      ? Library::away
                       : session_ ? Library::open
                                  : Library::none,
            .pending = counts_.records.pending,
            .verified = counts_.records.verified,
            .failed = counts_.records.failed,
            .undated = counts_.records.undated,
            .run = run_.state()};
}

void MenuBarViewModel::updateState() {
    state_ = productState(facts());
    Q_EMIT stateChanged();
}

void MenuBarViewModel::say(const QString& statusMessage) {
    publish(statusMessage_, statusMessage, &MenuBarViewModel::statusMessageChanged);
}

void MenuBarViewModel::showError(const QString& message) {
    publish(errorMessage_, message, &MenuBarViewModel::errorMessageChanged);
}

// Refreshing. One thread reads, in the order of asking, so no reading is published after a later
// one. What is asked for while a reading still waits to begin is served by that reading.

void MenuBarViewModel::refreshState() {
    refreshThen({});
}

void MenuBarViewModel::refreshThen(std::function<void()> then) {
    route_.refresh();
    if (!isRefreshWaiting_.exchange(true)) {
        stateTasks_.post(
            [this, session = session_, number = ++refreshNumber_](const std::stop_token&) {
                isRefreshWaiting_ = false;
                const AccountModel::Account account = account_.read();
                const RecordCounts counts = session ? readCounts(session->run.db) : RecordCounts();
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

RecordCounts MenuBarViewModel::readCounts(DatabaseManager& db) {
    RecordCounts counts;
    try {
        counts.records = StoreCounts::of(db);
        counts.categories = db.fetchFailedCategorySummaries();
    } catch (const DBError&) { // NOLINT(bugprone-empty-catch)
        // A store that is busy or broken reads as empty: the display must not fail with it.
    }
    return counts;
}

void MenuBarViewModel::publishState(int refresh, const AccountModel::Account& account,
                                    RecordCounts counts) {
    if (away_ && !session_)
        counts.records = away_->counts;
    if (run_.ended(RunState::End::complete) && counts.records.pending > 0)
        run_.set({}); // something new is there
    account_.publish(account);
    publish(counts_, std::move(counts), &MenuBarViewModel::countsChanged);
    updateState();
    say(run_.state().phase == RunState::Phase::waiting ? run_.state().text()
                                                       : pendingText(pendingCount()));
    if (isSignedIn())
        route_.loadAlbumsOnce();

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

// What is derived.

QDateTime MenuBarViewModel::lastSyncDateTime() const {
    return lastSyncTime_ ? timeOf(*lastSyncTime_) : QDateTime();
}

QString MenuBarViewModel::lastSyncTimeString() const {
    return lastSyncTime_ ? QLocale().toString(timeOf(*lastSyncTime_).time(), QLocale::ShortFormat)
                         : QStringLiteral("Henüz yok");
}

double MenuBarViewModel::syncProgressFraction() const {
    return std::min(1.0, syncProgressPercentage() / 100);
}

double MenuBarViewModel::syncProgressPercentage() const {
    return run_.total() < 1 ? 0 : double(run_.completed()) / run_.total() * 100;
}

QString MenuBarViewModel::currentUploadSpeedString() const {
    return TransferActivityTracker::formatSpeed(run_.speed().current());
}

QString MenuBarViewModel::peakUploadSpeedString() const {
    return TransferActivityTracker::formatSpeed(run_.speed().peak());
}

// What the person switches.

/// Who wants nothing deleted is not asked about it any more.
void MenuBarViewModel::setAutoDeleteEnabled(bool enabled) {
    settings_.setAutoDeleteEnabled(enabled);
    if (!enabled)
        s_.trash.forget();
}

void MenuBarViewModel::toggleInspector() {
    isInspectorOpen_ = !isInspectorOpen_;
    Q_EMIT inspectorToggled();
}

void MenuBarViewModel::setShowQuarantineSheet(bool show) {
    publish(showQuarantineSheet_, show, &MenuBarViewModel::sheetsChanged);
}

} // namespace quorvane
