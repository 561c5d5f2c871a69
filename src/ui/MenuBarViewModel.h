#pragma once

#include "foundation/MainThread.h"
#include "foundation/TaskRunner.h"
#include "google/GoogleAlbumManager.h"
#include "google/GoogleOAuthManager.h"
#include "metadata/MetadataTypes.h"
#include "store/StoreCounts.h"
#include "ui/Desktop.h"
#include "ui/LibrarySession.h"
#include "ui/LogListModel.h"
#include "ui/SessionCheckModel.h"
#include "ui/SpeedMeter.h"
#include "ui/TrashQuestion.h"
#include "ui/ViewTypes.h"

#include <QPointer>
#include <QTimer>

namespace quorvane {

/// The one observable state behind everything a person sees, and the commands that they give. Lives
/// on the main thread; every command returns at once, works elsewhere and publishes its result
/// here. An absent text is an empty one.
class MenuBarViewModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isSignedIn READ isSignedIn NOTIFY accountChanged)
    Q_PROPERTY(bool isSessionLapsed READ isSessionLapsed NOTIFY accountChanged)
    Q_PROPERTY(QString userEmail READ userEmail NOTIFY accountChanged)
    Q_PROPERTY(bool isSigningIn READ isSigningIn NOTIFY accountChanged)
    Q_PROPERTY(QString signInAddress READ signInAddress NOTIFY accountChanged)

    Q_PROPERTY(QString state READ stateName NOTIFY stateChanged)
    Q_PROPERTY(quorvane::SyncVisualState syncState READ syncState NOTIFY stateChanged)
    Q_PROPERTY(bool isSyncing READ isSyncing NOTIFY syncChanged)
    Q_PROPERTY(QString lastSyncTimeString READ lastSyncTimeString NOTIFY syncChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(int syncCompletedCount READ syncCompletedCount NOTIFY progressChanged)
    Q_PROPERTY(int syncTotalCount READ syncTotalCount NOTIFY progressChanged)
    Q_PROPERTY(double syncProgressFraction READ syncProgressFraction NOTIFY progressChanged)
    Q_PROPERTY(double syncProgressPercentage READ syncProgressPercentage NOTIFY progressChanged)

    Q_PROPERTY(int pendingCount READ pendingCount NOTIFY countsChanged)
    Q_PROPERTY(int verifiedCount READ verifiedCount NOTIFY countsChanged)
    Q_PROPERTY(int failedCount READ failedCount NOTIFY countsChanged)
    Q_PROPERTY(int dateUnresolvedCount READ dateUnresolvedCount NOTIFY countsChanged)
    Q_PROPERTY(QVariantList failedCategorySummaries READ failedCategoryRows NOTIFY countsChanged)
    Q_PROPERTY(QString dateFallbackMode READ dateFallbackMode NOTIFY settingsChanged)
    Q_PROPERTY(bool showQuarantineSheet READ showQuarantineSheet WRITE setShowQuarantineSheet NOTIFY
                   sheetsChanged)

    Q_PROPERTY(bool hasLibrary READ hasLibrary NOTIFY routeChanged)
    Q_PROPERTY(QVariantList localAlbums READ localAlbumRows NOTIFY localAlbumsChanged)
    Q_PROPERTY(int totalPhotoCount READ totalPhotoCount NOTIFY localAlbumsChanged)
    Q_PROPERTY(QString selectedSourceAlbumID READ selectedSourceAlbumID NOTIFY routeChanged)
    Q_PROPERTY(QString selectedSourceAlbumTitle READ selectedSourceAlbumTitle NOTIFY routeChanged)
    Q_PROPERTY(int selectedSourceCount READ selectedSourceCount NOTIFY localAlbumsChanged)
    Q_PROPERTY(QVariantList googleAlbums READ googleAlbumRows NOTIFY googleAlbumsChanged)
    Q_PROPERTY(bool isLoadingGoogleAlbums READ isLoadingGoogleAlbums NOTIFY googleAlbumsChanged)
    Q_PROPERTY(
        bool hasInsufficientAlbumScopes READ hasInsufficientAlbumScopes NOTIFY googleAlbumsChanged)
    Q_PROPERTY(QString selectedTargetAlbumID READ selectedTargetAlbumID NOTIFY routeChanged)
    Q_PROPERTY(QString selectedTargetAlbumTitle READ selectedTargetAlbumTitle NOTIFY routeChanged)
    Q_PROPERTY(bool isSelectedTargetAlbumFull READ isSelectedTargetAlbumFull NOTIFY targetChanged)
    Q_PROPERTY(bool isSelectedTargetAlbumNearLimit READ isSelectedTargetAlbumNearLimit NOTIFY
                   targetChanged)
    Q_PROPERTY(QString selectedTargetAlbumCountString READ selectedTargetAlbumCountString NOTIFY
                   targetChanged)

    Q_PROPERTY(bool showPreSync20kAlert READ showPreSync20kAlert NOTIFY sheetsChanged)
    Q_PROPERTY(
        QString preSync20kTargetAlbumName READ preSync20kTargetAlbumName NOTIFY sheetsChanged)
    Q_PROPERTY(QString preSync20kNextPartName READ preSync20kNextPartName NOTIFY sheetsChanged)
    Q_PROPERTY(qint64 preSync20kCurrentCount READ preSync20kCurrentCount NOTIFY sheetsChanged)
    Q_PROPERTY(qint64 preSync20kPendingCount READ preSync20kPendingCount NOTIFY sheetsChanged)
    Q_PROPERTY(bool showAlbumLimitAlert READ showAlbumLimitAlert NOTIFY sheetsChanged)
    Q_PROPERTY(QString albumLimitAlertMessage READ albumLimitAlertMessage NOTIFY sheetsChanged)

    Q_PROPERTY(bool isAutoDeleteEnabled READ isAutoDeleteEnabled WRITE setAutoDeleteEnabled NOTIFY
                   settingsChanged)
    Q_PROPERTY(quorvane::AppTheme appTheme READ appTheme WRITE setAppTheme NOTIFY settingsChanged)
    Q_PROPERTY(bool areNotificationsEnabled READ areNotificationsEnabled WRITE
                   setNotificationsEnabled NOTIFY settingsChanged)
    Q_PROPERTY(bool startsAtLogin READ startsAtLogin WRITE setStartsAtLogin NOTIFY settingsChanged)

    Q_PROPERTY(bool isInspectorOpen READ isInspectorOpen NOTIFY inspectorToggled)
    Q_PROPERTY(QVariantList activeTransfers READ activeTransferRows NOTIFY transfersChanged)
    Q_PROPERTY(
        QString currentUploadSpeedString READ currentUploadSpeedString NOTIFY transfersChanged)
    Q_PROPERTY(QString peakUploadSpeedString READ peakUploadSpeedString NOTIFY transfersChanged)
    Q_PROPERTY(int latencyMs READ latencyMs NOTIFY transfersChanged)
    Q_PROPERTY(quorvane::LogListModel* recentLogs READ recentLogs CONSTANT)

  public:
    /// Not owned; they outlive the model.
    struct Services {
        GoogleOAuthManager& oauth;
        GoogleAlbumManager& albums;
        TransferActivityTracker& tracker;
        Preferences& preferences;
        Log& log;
        Publisher<LogEntry>& logPublisher;
        Console& console;
        Clock& clock;
        Desktop& desktop;
        TrashQuestion& trash;
        /// Held for the length of a run; throws `Error` while another process runs one.
        std::function<std::shared_ptr<void>()> acquireRunLock;
        std::filesystem::path logFile;
        /// Somebody signed in or out: the open library's state may be another's now.
        std::function<void()> accountDidChange = [] {};
        /// Gives a pasted callback to the sign-in that waits; false when it is not the awaited one.
        /// Blocks for moments.
        std::function<bool(const QString& url)> handOverURL = [](const QString&) { return false; };
        /// Finds out whether the library is where it was, and opens it when it has come back.
        std::function<void()> lookForLibrary = [] {};
        SessionCheckModel::Check checkSession = [](const std::stop_token&) {
            return std::vector<CheckedThing>();
        };
    };

    MenuBarViewModel(const Services& services, const std::vector<LogEntry>& earlierLog = {});

    /// Before the first library is chosen there is none. A run over an earlier one is stopped; over
    /// the same library it goes on in the new session.
    void setLibrary(std::shared_ptr<const LibrarySession> session);
    /// It is not where it was, until it is set again.
    void setLibraryAway(const AwayLibrary& library);

    // Commands. Main thread.
    Q_INVOKABLE void refreshState();
    Q_INVOKABLE void triggerSync();
    Q_INVOKABLE void stopSync();
    /// A run that waits tries at once; one that does not goes on.
    Q_INVOKABLE void tryNow();
    Q_INVOKABLE void lookForLibrary() { s_.lookForLibrary(); }
    Q_INVOKABLE void signIn();
    Q_INVOKABLE void cancelSignIn();
    /// Ends a sign-in with the address to which Google sent the person's browser.
    Q_INVOKABLE void pasteCallback(const QString& address);
    Q_INVOKABLE void signOut();
    Q_INVOKABLE void reauthorizeGoogle();
    Q_INVOKABLE void toggleInspector();
    /// An empty identifier is the whole library; an unknown one changes nothing.
    Q_INVOKABLE void selectSourceAlbum(const QString& id);
    /// An empty identifier is the library stream; an unknown one changes nothing.
    Q_INVOKABLE void selectTargetAlbum(const QString& id);
    Q_INVOKABLE void loadGoogleAlbums();
    Q_INVOKABLE void createGoogleAlbum(const QString& title);
    Q_INVOKABLE QString suggestNewAlbumTitle() const;
    Q_INVOKABLE QString nextPartTitle(const QString& title) const;
    Q_INVOKABLE void confirmPreSyncAutoRollover();
    Q_INVOKABLE void confirmPreSyncStopAtLimit();
    Q_INVOKABLE void createNextPartAlbumAndResume();
    Q_INVOKABLE void dismissPreSync20kAlert();
    Q_INVOKABLE void dismissAlbumLimitAlert();
    Q_INVOKABLE void dismissError();
    /// `dateFallbackMode` is a raw value; an unknown one is `strictNone`.
    /// What takes no date goes up as it is, once `sendsUndatable`.
    Q_INVOKABLE void retryQuarantinedItems(const QString& dateFallbackMode,
                                           bool sendsUndatable = false);
    Q_INVOKABLE void openLogFile();
    /// The answer to the question that is open. What goes goes in the background, under the lock
    /// of a run.
    void answerTrash(bool moves);

    /// Writes a setting; a failure is shown.
    void store(const std::function<void()>& write);
    /// Shown until it is dismissed, or the next thing is tried.
    void showError(const QString& message);

    /// True while work of any command is under way.
    bool isWorking();

    /// The library's content changed: its albums and total are counted anew by the next refresh.
    void libraryDidChange();

    // Published state.
    bool isSignedIn() const { return account_.isSignedIn; }
    /// Somebody was signed in, and Google ended that.
    bool isSessionLapsed() const { return account_.isLapsed; }
    const QString& userEmail() const { return account_.userEmail; }
    bool isSigningIn() const { return isSigningIn_; }
    /// Of the page on which the person signs in; empty when no sign-in is under way.
    QString signInAddress() const { return signInAddress_; }
    ProductState state() const { return state_; }
    QString stateName() const { return rawValue(state_); }
    /// All that the state follows from.
    ProductFacts facts() const;
    SyncVisualState syncState() const { return visualStateOf(state_); }
    bool isSyncing() const {
        return runState_.phase == RunState::Phase::running ||
               runState_.phase == RunState::Phase::waiting;
    }
    /// Since when the run waits; while it does.
    Date waitingSince() const { return waitingSince_; }
    /// How long the run is likely to take from now on; none while that is not known.
    std::optional<std::chrono::seconds> timeLeft() const;
    /// Of the latest run of this process: what it waits for, or how it ended.
    const RunState& runState() const { return runState_; }
    /// The next run tries the failed records again.
    bool isRetryOffered() const;
    const std::optional<Date>& lastSyncTime() const { return lastSyncTime_; }
    /// The local time of day, in the short style of the locale; "Henüz yok" before the first sync.
    QString lastSyncTimeString() const;
    const QString& statusMessage() const { return statusMessage_; }
    const QString& errorMessage() const { return errorMessage_; }
    int syncCompletedCount() const { return syncCompletedCount_; }
    int syncTotalCount() const { return syncTotalCount_; }
    double syncProgressFraction() const;   ///< 0...1
    double syncProgressPercentage() const; ///< 0...100

    int pendingCount() const { return counts_.records.pending; }
    int verifiedCount() const { return counts_.records.verified; }
    int failedCount() const { return counts_.records.failed; }
    int dateUnresolvedCount() const { return counts_.records.undated; }
    /// Of these, those whose file takes no date.
    int undatableCount() const { return counts_.records.undatable; }
    const std::vector<FailedCategorySummary>& failedCategorySummaries() const {
        return counts_.categories;
    }
    QVariantList failedCategoryRows() const { return toVariantList(counts_.categories); }
    QString dateFallbackMode() const;
    bool showQuarantineSheet() const { return showQuarantineSheet_; }
    void setShowQuarantineSheet(bool show);

    bool hasLibrary() const { return session_ != nullptr; }
    const LibrarySession* library() const { return session_.get(); } ///< none: null
    const std::shared_ptr<const LibrarySession>& session() const { return session_; }
    const Services& services() const { return s_; }
    /// While the chosen library is not where it was.
    const std::optional<AwayLibrary>& awayLibrary() const { return away_; }
    Date now() const { return s_.clock.now(); }
    const std::vector<LocalAlbumItem>& localAlbums() const { return localAlbums_; }
    QVariantList localAlbumRows() const { return toVariantList(localAlbums_); }
    int totalPhotoCount() const { return totalPhotoCount_; }
    const QString& selectedSourceAlbumID() const { return route_.sourceID; }
    const QString& selectedSourceAlbumTitle() const { return route_.sourceTitle; }
    int selectedSourceCount() const;
    const std::vector<GoogleAlbum>& googleAlbums() const { return googleAlbums_; }
    QVariantList googleAlbumRows() const { return toVariantList(googleAlbums_); }
    bool isLoadingGoogleAlbums() const { return isLoadingGoogleAlbums_; }
    bool hasInsufficientAlbumScopes() const { return hasInsufficientAlbumScopes_; }
    const QString& selectedTargetAlbumID() const { return route_.targetID; }
    const QString& selectedTargetAlbumTitle() const { return route_.targetTitle; }
    /// None for the library stream, and for an album that is not in the list.
    const GoogleAlbum* selectedTargetAlbum() const;
    bool isSelectedTargetAlbumFull() const;
    bool isSelectedTargetAlbumNearLimit() const;
    QString selectedTargetAlbumCountString() const; ///< "19.600 / 20.000"

    bool showPreSync20kAlert() const { return preSync_.show; }
    const QString& preSync20kTargetAlbumName() const { return preSync_.targetAlbumName; }
    const QString& preSync20kNextPartName() const { return preSync_.nextPartName; }
    std::int64_t preSync20kCurrentCount() const { return preSync_.currentCount; }
    std::int64_t preSync20kPendingCount() const { return preSync_.pendingCount; }
    bool showAlbumLimitAlert() const { return showAlbumLimitAlert_; }
    const QString& albumLimitAlertMessage() const { return albumLimitAlertMessage_; }

    /// The question before originals go to the Trash.
    const TrashQuestion& trash() const { return s_.trash; }
    /// A Photos bundle is only read.
    bool mayDelete() const { return !session_ || !session_->isBundle; }
    bool isAutoDeleteEnabled() const { return isAutoDeleteEnabled_; }
    void setAutoDeleteEnabled(bool enabled);
    AppTheme appTheme() const { return appTheme_; }
    void setAppTheme(AppTheme theme);
    bool areNotificationsEnabled() const;
    void setNotificationsEnabled(bool enabled);
    bool startsAtLogin() const;
    void setStartsAtLogin(bool starts);

    bool isInspectorOpen() const { return isInspectorOpen_; }
    const std::vector<ActiveTransferItem>& activeTransfers() const { return transfers_.items; }
    QVariantList activeTransferRows() const { return toVariantList(transfers_.items); }
    /// As a person would measure it; 0 while nothing runs.
    QString currentUploadSpeedString() const;
    QString peakUploadSpeedString() const;
    int latencyMs() const { return transfers_.latencyMilliseconds; }
    LogListModel* recentLogs() { return &recentLogs_; }
    SessionCheckModel* sessionCheck() { return &sessionCheck_; }

  Q_SIGNALS:
    void accountChanged();
    void stateChanged(); ///< the product's state, or what is said of it
    void syncChanged();
    void runEnded(const quorvane::SyncRunOutcome& outcome);
    void statusMessageChanged();
    void errorMessageChanged();
    void progressChanged();
    void countsChanged();
    void sheetsChanged();
    void routeChanged();
    void localAlbumsChanged();
    void googleAlbumsChanged();
    void targetChanged(); ///< the target album, or what is known of it
    void settingsChanged();
    void inspectorToggled();
    void transfersChanged();

  private:
    struct Account {
        bool isSignedIn = false;
        bool isLapsed = false;
        QString userEmail;
        bool operator==(const Account&) const = default;
    };
    struct Counts {
        StoreCounts records;
        std::vector<FailedCategorySummary> categories;
        bool operator==(const Counts&) const = default;
    };
    struct Route {
        QString sourceID;
        QString sourceTitle = QStringLiteral("Tüm Fotoğraflar");
        QString targetID;
        QString targetTitle = QStringLiteral("Google Fotoğraflar (Ana Akış)");
        bool operator==(const Route&) const = default;
    };
    struct PreSync {
        bool show = false;
        QString targetAlbumName;
        QString nextPartName;
        std::int64_t currentCount = 0;
        std::int64_t pendingCount = 0;
        bool operator==(const PreSync&) const = default;
    };
    using Signal = void (MenuBarViewModel::*)();

    /// The one way by which a published value changes.
    template <typename Value>
    void publish(Value& current, std::type_identity_t<Value> next, Signal changed) {
        if (current == next)
            return;
        current = std::move(next);
        Q_EMIT(this->*changed)();
    }
    /// Runs `work` on the main thread, unless the model is gone by then. Any thread.
    template <typename Work>
    void post(Work work) {
        onMainThread([self = self_, work = std::move(work)] {
            if (self)
                work();
        });
    }

    void refreshThen(std::function<void()> then);
    Account readAccount();
    static Counts readCounts(DatabaseManager& db);
    void publishRoute();
    void publishState(int refresh, Account account, Counts counts);
    void countLibrary();
    void sampleTransfers();

    void startSignIn(bool isRenewal);
    /// An empty failure is the person's own decision.
    void signInEnded(bool isRenewal, const std::optional<QString>& failure);
    bool isReadyToRun();
    void executeSyncLoop();
    void finishRun(int run, const SyncRunOutcome& outcome);
    void concludeRun(const SyncRunOutcome& outcome);
    void tellOutcome(const SyncRunOutcome& outcome);
    void publishProgress(int completed, int total);
    void showLastRun();
    void publishRunState(const RunState& state);
    /// The latest word on the run; everything that shows a state follows.
    void setRun(const RunState& state);
    void endRun(const RunState& state);
    void updateState();
    void rememberLastSync();
    bool ended(RunState::End end) const {
        return runState_.phase == RunState::Phase::ended && runState_.end == end;
    }
    void createAlbum(const QString& title, std::function<void(const GoogleAlbum&)> created,
                     std::function<void(const QString&)> failed);
    void confirmPreSync(bool rollsOver);
    void handleAlbumLimitReached();
    void askAboutTrash();
    void notifyPerson(const QString& title, const QString& text);

    const Services s_;
    const QPointer<MenuBarViewModel> self_{this}; ///< none once the model is gone
    std::shared_ptr<const LibrarySession> session_;

    Account account_;
    bool isSigningIn_ = false;
    QString signInAddress_;
    ProductState state_ = ProductState::signedOut;
    RunState runState_;
    Date waitingSince_{};
    std::optional<Clock::Monotonic> paceSince_; ///< when the run's first item was done
    int paceFrom_ = 0;                          ///< what was done by then
    std::optional<AwayLibrary> away_;
    std::optional<Date> lastSyncTime_;
    QString statusMessage_;
    QString errorMessage_;
    int syncCompletedCount_ = 0;
    int syncTotalCount_ = 0;
    Counts counts_;
    bool showQuarantineSheet_ = false;
    std::vector<LocalAlbumItem> localAlbums_;
    int totalPhotoCount_ = 0;
    Route route_;
    std::vector<GoogleAlbum> googleAlbums_;
    bool isLoadingGoogleAlbums_ = false;
    bool hasInsufficientAlbumScopes_ = false;
    PreSync preSync_;
    bool showAlbumLimitAlert_ = false;
    QString albumLimitAlertMessage_;
    bool isAutoDeleteEnabled_;
    AppTheme appTheme_;
    bool isInspectorOpen_ = false;
    TransferSnapshot transfers_;
    SpeedMeter speed_;
    int samples_ = 0; ///< of the transfers, since the run began
    LogListModel recentLogs_;
    SessionCheckModel sessionCheck_;

    std::atomic<bool> hasSessionEnded_ = false; ///< nothing goes on before somebody signs in
    bool knowsGoogleAlbums_ = false;            ///< of the account that is signed in
    bool isLibraryStale_ = true;                ///< its albums and total are to be counted
    bool hasLibraryChanged_ = false;            ///< since its albums were listed
    int runNumber_ = 0;     ///< of the latest run; an earlier one publishes nothing
    int refreshNumber_ = 0; ///< of the latest refresh that was asked for
    std::vector<std::pair<int, std::function<void()>>> afterRefresh_;
    std::atomic<bool> isRefreshWaiting_ = false; ///< asked for, and not yet reading
    std::stop_source runStop_{std::nostopstate};
    std::stop_source signInStop_{std::nostopstate};
    QTimer transferTimer_;
    Subscription albumLimit_;

    // Last: their work uses the rest. One thread each, so that nothing overtakes its like.
    TaskRunner stateTasks_;
    TaskRunner libraryTasks_;
    TaskRunner googleTasks_;
    TaskRunner runTasks_; ///< runs, and changes of the source, which must not overlap a run
};

} // namespace quorvane
