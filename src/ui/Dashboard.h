#pragma once

#include "ui/AutoSync.h"
#include "ui/DashboardTypes.h"
#include "ui/InspectorModel.h"
#include "ui/LibrarySettings.h"
#include "ui/MenuBarViewModel.h"
#include "ui/MenuModel.h"
#include "ui/ReviewModel.h"
#include "ui/RunReportModel.h"
#include "ui/TransferListModel.h"

namespace quorvane {

/// The state model in the words of the window: whatever is drawn is decided and worded here, QML
/// only places it and speaks to nothing else. Main thread. Tells of no change while nobody looks
/// (`isLive`), so a hidden window costs nothing.
class Dashboard final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLive READ isLive NOTIFY liveChanged)
    Q_PROPERTY(quorvane::AccountView account READ account NOTIFY accountChanged)
    Q_PROPERTY(quorvane::RouteView route READ route NOTIFY routeChanged)
    Q_PROPERTY(quorvane::HeroView hero READ hero NOTIFY heroChanged)
    Q_PROPERTY(quorvane::LibraryView library READ library NOTIFY libraryChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isAutoDeleteEnabled READ isAutoDeleteEnabled WRITE setAutoDeleteEnabled NOTIFY
                   settingsChanged)
    Q_PROPERTY(bool areNotificationsEnabled READ areNotificationsEnabled WRITE
                   setNotificationsEnabled NOTIFY settingsChanged)
    Q_PROPERTY(bool startsAtLogin READ startsAtLogin WRITE setStartsAtLogin NOTIFY settingsChanged)
    Q_PROPERTY(quorvane::ReviewModel* review READ review CONSTANT)
    Q_PROPERTY(quorvane::InspectorModel* lives READ lives CONSTANT)
    Q_PROPERTY(quorvane::RunReportModel* runReport READ runReport CONSTANT)
    Q_PROPERTY(quorvane::AlertView alert READ alert NOTIFY sheetsChanged)
    Q_PROPERTY(bool isInspectorOpen READ isInspectorOpen NOTIFY inspectorToggled)
    Q_PROPERTY(quorvane::InspectorView inspector READ inspector NOTIFY inspectorChanged)
    Q_PROPERTY(quorvane::TransferListModel* transfers READ transfers CONSTANT)
    Q_PROPERTY(quorvane::SessionCheckModel* sessionCheck READ sessionCheck CONSTANT)
    Q_PROPERTY(quorvane::LogListModel* log READ log NOTIFY liveChanged)
    Q_PROPERTY(quorvane::MenuModel* sourceMenu READ sourceMenu CONSTANT)
    Q_PROPERTY(quorvane::MenuModel* targetMenu READ targetMenu CONSTANT)
    Q_PROPERTY(quorvane::MenuModel* themeMenu READ themeMenu CONSTANT)
    Q_PROPERTY(quorvane::AutoSync* automatic READ automatic CONSTANT)
    Q_PROPERTY(quorvane::MenuModel* uploadLimitMenu READ uploadLimitMenu CONSTANT)
    Q_PROPERTY(quorvane::LibrarySettings* librarySettings READ librarySettings CONSTANT)
    Q_PROPERTY(QString hint READ hint NOTIFY hintChanged)
    Q_PROPERTY(QString trashLink READ trashLink NOTIFY sheetsChanged)
    Q_PROPERTY(QString deletionObstacle READ deletionObstacle NOTIFY routeChanged)

  public:
    Dashboard(MenuBarViewModel& model, AutoSync& automatic);

    bool isLive() const { return isLive_; }
    /// Whether somebody can see the window.
    void setLive(bool live);

    AccountView account() const;
    RouteView route() const;
    HeroView hero() const;
    LibraryView library() const;
    QString errorMessage() const { return model_.errorMessage(); }
    bool isAutoDeleteEnabled() const { return model_.isAutoDeleteEnabled(); }
    void setAutoDeleteEnabled(bool enabled) { model_.setAutoDeleteEnabled(enabled); }
    bool areNotificationsEnabled() const { return model_.settings().areNotificationsEnabled(); }
    void setNotificationsEnabled(bool enabled) {
        model_.settings().setNotificationsEnabled(enabled);
    }
    bool startsAtLogin() const { return model_.settings().startsAtLogin(); }
    void setStartsAtLogin(bool starts) { model_.settings().setStartsAtLogin(starts); }
    ReviewModel* review() { return &review_; }
    InspectorModel* lives() { return &lives_; }
    RunReportModel* runReport() { return &runReport_; }
    AlertView alert() const;
    bool isInspectorOpen() const { return model_.isInspectorOpen(); }
    InspectorView inspector() const;
    TransferListModel* transfers() { return &transfers_; }
    SessionCheckModel* sessionCheck() { return model_.sessionCheck(); }
    LibrarySettings* librarySettings() { return &librarySettings_; }
    AutoSync* automatic() { return &automatic_; }
    /// None while nobody looks.
    LogListModel* log() const { return isLive_ ? model_.recentLogs() : nullptr; }

    MenuModel* sourceMenu() { return &sourceMenu_; }
    MenuModel* targetMenu() { return &targetMenu_; }
    MenuModel* themeMenu() { return &themeMenu_; }
    MenuModel* uploadLimitMenu() { return &uploadLimitMenu_; }

    /// That a question about the Trash is open; empty when none is.
    QString trashLink() const;
    /// Why originals of this library cannot be deleted; empty when they can.
    QString deletionObstacle() const;
    /// A line above the cards; empty for none.
    const QString& hint() const { return hint_; }
    void setHint(const QString& hint);

    // What a person presses.
    Q_INVOKABLE void signIn() { model_.signIn(); }
    Q_INVOKABLE void cancelSignIn() { model_.account().cancel(); }
    Q_INVOKABLE void pasteCallback(const QString& address) { model_.account().paste(address); }
    Q_INVOKABLE void renewAccess() { model_.reauthorizeGoogle(); }
    /// Asks first while a run is under way.
    Q_INVOKABLE void signOut();
    Q_INVOKABLE void chooseLibrary() { Q_EMIT chooseLibraryRequested(); }
    Q_INVOKABLE void lookForLibrary() { model_.lookForLibrary(); }
    Q_INVOKABLE void loadAlbums() { model_.loadGoogleAlbums(); }
    Q_INVOKABLE QString suggestNewAlbumTitle() const { return model_.suggestNewAlbumTitle(); }
    Q_INVOKABLE void createAlbum(const QString& title) { model_.createGoogleAlbum(title); }
    /// Asks for a library while there is none.
    Q_INVOKABLE void startSync();
    Q_INVOKABLE void stopSync() { model_.stopSync(); }
    Q_INVOKABLE void tryNow() { model_.tryNow(); }
    Q_INVOKABLE void showReview() { model_.setShowQuarantineSheet(true); }
    Q_INVOKABLE void showTrashQuestion();
    /// What a notice speaks of; nothing where that is settled by now.
    void open(Notice::About about);
    Q_INVOKABLE void answerAlert(int button);
    Q_INVOKABLE void dismissError() { model_.dismissError(); }
    Q_INVOKABLE void toggleInspector() { model_.toggleInspector(); }
    Q_INVOKABLE void openLogFile() { model_.services().desktop.open(model_.services().logFile); }
    /// What helps with a thing that the session check found.
    Q_INVOKABLE void help(int checkedRow);
    /// Asks first while a run is under way.
    Q_INVOKABLE void quit();
    Q_INVOKABLE void clearLog();

  Q_SIGNALS:
    void liveChanged();
    void accountChanged();
    void routeChanged();
    void heroChanged();
    void libraryChanged();
    void errorMessageChanged();
    void settingsChanged();
    void sheetsChanged();
    void inspectorToggled();
    void inspectorChanged();
    void menusChanged();
    void hintChanged();

    void createAlbumRequested();
    void chooseLibraryRequested();
    void quitRequested();

  private:
    using Signal = void (Dashboard::*)();
    /// `changed` follows the model's `cause`, for as long as somebody looks.
    void relay(void (MenuBarViewModel::*cause)(), std::initializer_list<Signal> changed);
    void updateTransfers();
    void updateMenus();
    std::vector<MenuRow> sourceRows();
    std::vector<MenuRow> targetRows();
    std::vector<MenuRow> themeRows();
    std::vector<MenuRow> uploadLimitRows();
    AlertView ownQuestion() const;
    void answerOwnQuestion(bool agrees);

    MenuBarViewModel& model_;
    AutoSync& automatic_;
    TransferListModel transfers_;
    LibrarySettings librarySettings_;
    ReviewModel review_;
    InspectorModel lives_;
    RunReportModel runReport_;
    MenuModel sourceMenu_, targetMenu_, themeMenu_, uploadLimitMenu_;
    bool isLive_ = false;
    /// Over the window, because of what the person did.
    enum class Question { none, trash, quit, signOut } question_ = Question::none;
    void ask(Question question);
    QString hint_;
    QTimer minutes_; ///< while somebody looks: what tells how long is told anew
};

} // namespace quorvane
