#pragma once

#include "ui/AutoSync.h"
#include "ui/DashboardTypes.h"
#include "ui/InspectorModel.h"
#include "ui/LibrarySettings.h"
#include "ui/MenuBarViewModel.h"
#include "ui/ReviewModel.h"
#include "ui/TransferListModel.h"

namespace quorvane {

/// The state model in the words of the window: whatever is drawn is decided and worded here, QML
/// only places it. Main thread. Tells of no change while nobody looks (`isLive`), so a hidden
/// window costs nothing.
class Dashboard final : public QObject {
    Q_OBJECT
    Q_PROPERTY(quorvane::MenuBarViewModel* model READ model CONSTANT)
    Q_PROPERTY(bool isLive READ isLive NOTIFY liveChanged)
    Q_PROPERTY(quorvane::AccountView account READ account NOTIFY accountChanged)
    Q_PROPERTY(quorvane::RouteView route READ route NOTIFY routeChanged)
    Q_PROPERTY(quorvane::HeroView hero READ hero NOTIFY heroChanged)
    Q_PROPERTY(quorvane::LibraryView library READ library NOTIFY libraryChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isAutoDeleteEnabled READ isAutoDeleteEnabled NOTIFY settingsChanged)
    Q_PROPERTY(quorvane::ReviewModel* review READ review CONSTANT)
    Q_PROPERTY(quorvane::InspectorModel* lives READ lives CONSTANT)
    Q_PROPERTY(quorvane::AlertView alert READ alert NOTIFY sheetsChanged)
    Q_PROPERTY(bool isInspectorOpen READ isInspectorOpen NOTIFY inspectorToggled)
    Q_PROPERTY(quorvane::InspectorView inspector READ inspector NOTIFY inspectorChanged)
    Q_PROPERTY(quorvane::TransferListModel* transfers READ transfers CONSTANT)
    Q_PROPERTY(quorvane::SessionCheckModel* sessionCheck READ sessionCheck CONSTANT)
    Q_PROPERTY(quorvane::LogListModel* log READ log NOTIFY liveChanged)
    Q_PROPERTY(QVariantList sourceMenu READ sourceMenu NOTIFY menusChanged)
    Q_PROPERTY(QVariantList targetMenu READ targetMenu NOTIFY menusChanged)
    Q_PROPERTY(QVariantList themeMenu READ themeMenu NOTIFY settingsChanged)
    Q_PROPERTY(quorvane::AutoSync* automatic READ automatic CONSTANT)
    Q_PROPERTY(QVariantList uploadLimitMenu READ uploadLimitMenu NOTIFY settingsChanged)
    Q_PROPERTY(quorvane::LibrarySettings* librarySettings READ librarySettings CONSTANT)
    Q_PROPERTY(QString hint READ hint NOTIFY hintChanged)
    Q_PROPERTY(QString trashLink READ trashLink NOTIFY sheetsChanged)
    Q_PROPERTY(QString deletionObstacle READ deletionObstacle NOTIFY routeChanged)

  public:
    Dashboard(MenuBarViewModel& model, AutoSync& automatic);

    MenuBarViewModel* model() { return &model_; }
    bool isLive() const { return isLive_; }
    /// Whether somebody can see the window.
    void setLive(bool live);

    AccountView account() const;
    RouteView route() const;
    HeroView hero() const;
    LibraryView library() const;
    QString errorMessage() const { return model_.errorMessage(); }
    bool isAutoDeleteEnabled() const { return model_.isAutoDeleteEnabled(); }
    ReviewModel* review() { return &review_; }
    InspectorModel* lives() { return &lives_; }
    AlertView alert() const;
    bool isInspectorOpen() const { return model_.isInspectorOpen(); }
    InspectorView inspector() const;
    TransferListModel* transfers() { return &transfers_; }
    SessionCheckModel* sessionCheck() { return model_.sessionCheck(); }
    LibrarySettings* librarySettings() { return &librarySettings_; }
    AutoSync* automatic() { return &automatic_; }
    /// None while nobody looks.
    LogListModel* log() const { return isLive_ ? model_.recentLogs() : nullptr; }

    /// Rows of {kind, title, symbol, command, value, isChecked, isEnabled}; the kinds are "entry",
    /// "header" and "line".
    QVariantList sourceMenu() const;
    QVariantList targetMenu() const;
    QVariantList themeMenu() const;
    QVariantList uploadLimitMenu() const;

    /// That a question about the Trash is open; empty when none is.
    QString trashLink() const;
    /// Why originals of this library cannot be deleted; empty when they can.
    QString deletionObstacle() const;
    /// A line above the cards; empty for none.
    const QString& hint() const { return hint_; }
    void setHint(const QString& hint);

    /// What a menu row or an alert's button does.
    Q_INVOKABLE void choose(const QString& command, const QString& value = {});
    Q_INVOKABLE void answerAlert(int button);
    Q_INVOKABLE void showTrashQuestion();
    /// Asks first while a run is under way.
    void quit();
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
    void signOut();
    AlertView ownQuestion() const;
    void answerOwnQuestion(bool agrees);

    MenuBarViewModel& model_;
    AutoSync& automatic_;
    TransferListModel transfers_;
    LibrarySettings librarySettings_;
    ReviewModel review_;
    InspectorModel lives_;
    bool isLive_ = false;
    /// Over the window, because of what the person did.
    enum class Question { none, trash, quit, signOut } question_ = Question::none;
    void ask(Question question);
    QString hint_;
    QTimer minutes_; ///< while somebody looks: what tells how long is told anew
};

} // namespace quorvane
