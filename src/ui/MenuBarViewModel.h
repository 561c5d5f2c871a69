#pragma once

#include "foundation/MainThread.h"
#include "store/StoreCounts.h"
#include "ui/AccountModel.h"
#include "ui/LogListModel.h"
#include "ui/ModelServices.h"
#include "ui/RouteModel.h"
#include "ui/RunModel.h"

#include <QDateTime>

namespace quorvane {

/// The one observable state behind everything a person sees, and the commands that they give. What
/// belongs together is a model of its own behind it (account, route, run, settings); here is what
/// follows from several. Lives on the main thread; every command returns at once, works elsewhere
/// and publishes its result here. An absent text is an empty one.
class MenuBarViewModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isSignedIn READ isSignedIn NOTIFY accountChanged)
    Q_PROPERTY(QString userEmail READ userEmail NOTIFY accountChanged)
    Q_PROPERTY(quorvane::SyncVisualState syncState READ syncState NOTIFY stateChanged)
    Q_PROPERTY(bool isSyncing READ isSyncing NOTIFY syncChanged)
    Q_PROPERTY(int pendingCount READ pendingCount NOTIFY countsChanged)
    Q_PROPERTY(int verifiedCount READ verifiedCount NOTIFY countsChanged)
    Q_PROPERTY(QDateTime lastSyncTime READ lastSyncDateTime NOTIFY syncChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(int syncCompletedCount READ syncCompletedCount NOTIFY progressChanged)
    Q_PROPERTY(int syncTotalCount READ syncTotalCount NOTIFY progressChanged)
    Q_PROPERTY(int failedCount READ failedCount NOTIFY countsChanged)
    Q_PROPERTY(int dateUnresolvedCount READ dateUnresolvedCount NOTIFY countsChanged)
    Q_PROPERTY(QVariantList failedCategorySummaries READ failedCategoryRows NOTIFY countsChanged)
    Q_PROPERTY(bool showQuarantineSheet READ showQuarantineSheet WRITE setShowQuarantineSheet NOTIFY
                   sheetsChanged)
    Q_PROPERTY(bool showPreSync20kAlert READ showPreSync20kAlert NOTIFY sheetsChanged)
    Q_PROPERTY(
        QString preSync20kTargetAlbumName READ preSync20kTargetAlbumName NOTIFY sheetsChanged)
    Q_PROPERTY(QString preSync20kNextPartName READ preSync20kNextPartName NOTIFY sheetsChanged)
    Q_PROPERTY(qint64 preSync20kCurrentCount READ preSync20kCurrentCount NOTIFY sheetsChanged)
    Q_PROPERTY(qint64 preSync20kPendingCount READ preSync20kPendingCount NOTIFY sheetsChanged)
    Q_PROPERTY(QVariantList localAlbums READ localAlbumRows NOTIFY localAlbumsChanged)
    Q_PROPERTY(QString selectedSourceAlbumID READ selectedSourceAlbumID NOTIFY routeChanged)
    Q_PROPERTY(QString selectedSourceAlbumTitle READ selectedSourceAlbumTitle NOTIFY routeChanged)
    Q_PROPERTY(int totalPhotoCount READ totalPhotoCount NOTIFY localAlbumsChanged)
    Q_PROPERTY(QVariantList googleAlbums READ googleAlbumRows NOTIFY googleAlbumsChanged)
    Q_PROPERTY(QString selectedTargetAlbumID READ selectedTargetAlbumID NOTIFY routeChanged)
    Q_PROPERTY(QString selectedTargetAlbumTitle READ selectedTargetAlbumTitle NOTIFY routeChanged)
    Q_PROPERTY(bool isLoadingGoogleAlbums READ isLoadingGoogleAlbums NOTIFY googleAlbumsChanged)
    Q_PROPERTY(
        bool hasInsufficientAlbumScopes READ hasInsufficientAlbumScopes NOTIFY googleAlbumsChanged)
    Q_PROPERTY(bool showAlbumLimitAlert READ showAlbumLimitAlert NOTIFY sheetsChanged)
    Q_PROPERTY(QString albumLimitAlertMessage READ albumLimitAlertMessage NOTIFY sheetsChanged)
    Q_PROPERTY(bool isAutoDeleteEnabled READ isAutoDeleteEnabled WRITE setAutoDeleteEnabled NOTIFY
                   settingsChanged)
    Q_PROPERTY(quorvane::AppTheme appTheme READ appTheme WRITE setAppTheme NOTIFY settingsChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isInspectorOpen READ isInspectorOpen NOTIFY inspectorToggled)
    Q_PROPERTY(QVariantList activeTransfers READ activeTransferRows NOTIFY transfersChanged)
    Q_PROPERTY(
        QString currentUploadSpeedString READ currentUploadSpeedString NOTIFY transfersChanged)
    Q_PROPERTY(QString peakUploadSpeedString READ peakUploadSpeedString NOTIFY transfersChanged)
    Q_PROPERTY(int latencyMs READ latencyMs NOTIFY transfersChanged)
    Q_PROPERTY(quorvane::LogListModel* recentLogs READ recentLogs CONSTANT)
    Q_PROPERTY(double syncProgressFraction READ syncProgressFraction NOTIFY progressChanged)
    Q_PROPERTY(double syncProgressPercentage READ syncProgressPercentage NOTIFY progressChanged)
    Q_PROPERTY(QString lastSyncTimeString READ lastSyncTimeString NOTIFY syncChanged)

  public:
    using Services = ModelServices;
    explicit MenuBarViewModel(const Services& services,
                              const std::vector<LogEntry>& earlierLog = {});

    const Services& services() const { return s_; }
    AccountModel& account() { return account_; }
    const RouteModel& route() const { return route_; }
    const RunModel& run() const { return run_; }
    SettingsModel& settings() { return settings_; }

    // The library.
    /// Before the first library is chosen there is none. A run over an earlier one is stopped; over
    /// the same library it goes on in the new session.
    void setLibrary(std::shared_ptr<const LibrarySession> session);
    /// It is not where it was, until it is set again.
    void setLibraryAway(const AwayLibrary& library);
    /// Its content changed: its albums and total are counted anew by the next refresh.
    void libraryDidChange();
    void lookForLibrary() { s_.lookForLibrary(); }
    bool hasLibrary() const { return session_ != nullptr; }
    const LibrarySession* library() const { return session_.get(); } ///< none: null
    const std::shared_ptr<const LibrarySession>& session() const { return session_; }
    /// While the chosen library is not where it was.
    const std::optional<AwayLibrary>& awayLibrary() const { return away_; }
    /// A Photos bundle is only read.
    bool mayDelete() const { return !session_ || !session_->isBundle; }

    // How things are.
    void refreshState();
    /// True while work of any command is under way.
    bool isWorking();
    ProductState state() const { return state_; }
    /// All that the state follows from.
    ProductFacts facts() const;
    SyncVisualState syncState() const { return visualStateOf(state_); }
    const QString& statusMessage() const { return statusMessage_; }
    const QString& errorMessage() const { return errorMessage_; }
    /// Shown until it is dismissed, or the next thing is tried.
    void showError(const QString& message);
    void dismissError() { showError({}); }
    const StoreCounts& records() const { return counts_.records; }
    int pendingCount() const { return counts_.records.pending; }
    int verifiedCount() const { return counts_.records.verified; }
    int failedCount() const { return counts_.records.failed; }
    int dateUnresolvedCount() const { return counts_.records.undated; }
    /// Of these, those whose file takes no date.
    int undatableCount() const { return counts_.records.undatable; }
    const std::vector<FailedCategorySummary>& failedCategorySummaries() const {
        return counts_.categories;
    }

    // The account.
    bool isSignedIn() const { return account_.account().isSignedIn; }
    const QString& userEmail() const { return account_.account().email; }
    void signIn() { account_.signIn(false); }
    void reauthorizeGoogle() { account_.signIn(true); }
    void signOut();

    // The run.
    void triggerSync();
    void stopSync();
    /// A run that waits tries at once; one that does not goes on.
    void tryNow();
    bool isSyncing() const { return run_.isSyncing(); }
    /// The next run tries the failed records again.
    bool isRetryOffered() const;
    const std::optional<Date>& lastSyncTime() const { return lastSyncTime_; }
    /// The local time of day, in the short style of the locale; "Henüz yok" before the first sync.
    QString lastSyncTimeString() const;
    int syncCompletedCount() const { return run_.completed(); }
    int syncTotalCount() const { return run_.total(); }
    double syncProgressFraction() const;   ///< 0...1
    double syncProgressPercentage() const; ///< 0...100

    // The route. An empty identifier is the whole library, or the library stream; an unknown one
    // changes nothing.
    void selectSourceAlbum(const QString& id);
    void selectTargetAlbum(const QString& id);
    void loadGoogleAlbums() { route_.loadAlbums(); }
    void createGoogleAlbum(const QString& title);
    QString suggestNewAlbumTitle() const;
    const std::vector<LocalAlbumItem>& localAlbums() const { return route_.localAlbums(); }
    int totalPhotoCount() const { return route_.totalPhotoCount(); }
    const QString& selectedSourceAlbumID() const { return route_.route().sourceID; }
    const QString& selectedSourceAlbumTitle() const { return route_.route().sourceTitle; }
    const std::vector<GoogleAlbum>& googleAlbums() const { return route_.googleAlbums(); }
    bool isLoadingGoogleAlbums() const { return route_.isLoadingAlbums(); }
    bool hasInsufficientAlbumScopes() const { return route_.lacksAlbumScopes(); }
    const QString& selectedTargetAlbumID() const { return route_.route().targetID; }
    const QString& selectedTargetAlbumTitle() const { return route_.route().targetTitle; }

    // The album limit.
    void confirmPreSyncAutoRollover() { confirmPreSync(true); }
    void confirmPreSyncStopAtLimit() { confirmPreSync(false); }
    void createNextPartAlbumAndResume();
    void dismissPreSync20kAlert();
    void dismissAlbumLimitAlert();
    bool showPreSync20kAlert() const { return preSync_.show; }
    const QString& preSync20kTargetAlbumName() const { return preSync_.targetAlbumName; }
    const QString& preSync20kNextPartName() const { return preSync_.nextPartName; }
    std::int64_t preSync20kCurrentCount() const { return preSync_.currentCount; }
    std::int64_t preSync20kPendingCount() const { return preSync_.pendingCount; }
    bool showAlbumLimitAlert() const { return showAlbumLimitAlert_; }
    const QString& albumLimitAlertMessage() const { return albumLimitAlertMessage_; }

    // The quarantine, and the Trash.
    /// `dateFallbackMode` is a raw value; an unknown one is `strictNone`.
    /// What takes no date goes up as it is, once `sendsUndatable`.
    void retryQuarantinedItems(const QString& dateFallbackMode, bool sendsUndatable = false);
    bool showQuarantineSheet() const { return showQuarantineSheet_; }
    void setShowQuarantineSheet(bool show);
    /// The question before originals go to the Trash.
    const TrashQuestion& trash() const { return s_.trash; }
    /// The answer to the question that is open. What goes goes in the background, under the lock
    /// of a run.
    void answerTrash(bool moves);

    // Settings.
    bool isAutoDeleteEnabled() const { return settings_.isAutoDeleteEnabled(); }
    void setAutoDeleteEnabled(bool enabled);
    AppTheme appTheme() const { return settings_.appTheme(); }
    void setAppTheme(AppTheme theme) { settings_.setAppTheme(theme); }

    // The inspector.
    void toggleInspector();
    bool isInspectorOpen() const { return isInspectorOpen_; }
    const std::vector<ActiveTransferItem>& activeTransfers() const {
        return run_.transfers().items;
    }
    QString currentUploadSpeedString() const;
    QString peakUploadSpeedString() const;
    int latencyMs() const { return run_.transfers().latencyMilliseconds; }
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
    void settingsChanged();
    void inspectorToggled();
    void transfersChanged();

  private:
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

    void connectModels();
    void refreshThen(std::function<void()> then);
    static RecordCounts readCounts(DatabaseManager& db);
    void publishState(int refresh, const AccountModel::Account& account, RecordCounts counts);
    void updateState();
    void say(const QString& statusMessage);
    QVariantList failedCategoryRows() const { return toVariantList(counts_.categories); }
    QVariantList localAlbumRows() const { return toVariantList(localAlbums()); }
    QVariantList googleAlbumRows() const { return toVariantList(googleAlbums()); }
    QVariantList activeTransferRows() const { return toVariantList(activeTransfers()); }
    QDateTime lastSyncDateTime() const;

    void signedIn();
    void signedOut();
    bool isReadyToRun();
    void executeSyncLoop();
    void runChanged();
    void runFinished(const SyncRunOutcome& outcome);
    void concludeRun(const SyncRunOutcome& outcome);
    void tellOutcome(const SyncRunOutcome& outcome);
    void showLastRun();
    void rememberLastSync();
    void confirmPreSync(bool rollsOver);
    void albumLimitReached();
    void showAlbumLimit(const QString& message);
    void askAboutTrash();
    void trashTaken(const DeletionSummary& summary, const QString& failure);

    const Services s_;
    const QPointer<MenuBarViewModel> self_{this}; ///< none once the model is gone
    SettingsModel settings_;
    AccountModel account_;
    RouteModel route_;
    RunModel run_;
    std::shared_ptr<const LibrarySession> session_;
    std::optional<AwayLibrary> away_;
    Subscription albumLimit_;

    ProductState state_ = ProductState::signedOut;
    std::optional<Date> lastSyncTime_;
    QString statusMessage_;
    QString errorMessage_;
    RecordCounts counts_;
    bool showQuarantineSheet_ = false;
    PreSync preSync_;
    bool showAlbumLimitAlert_ = false;
    QString albumLimitAlertMessage_;
    bool isInspectorOpen_ = false;
    LogListModel recentLogs_;
    SessionCheckModel sessionCheck_;

    int refreshNumber_ = 0; ///< of the latest refresh that was asked for
    std::vector<std::pair<int, std::function<void()>>> afterRefresh_;
    std::atomic<bool> isRefreshWaiting_ = false; ///< asked for, and not yet reading
    TaskRunner stateTasks_; ///< last: its work uses the rest; one thread, so nothing is overtaken
};

} // namespace quorvane
