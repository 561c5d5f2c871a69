#pragma once

#include "foundation/Preferences.h"
#include "ui/Dashboard.h"

#include <QQuickView>
#include <QTimer>
#include <QVariantAnimation>

#include <memory>

namespace quorvane {

/// Owns the one window. It is built at leisure, or when it is first wanted, and only hidden from
/// then on. Main thread; the model and the preferences outlive it.
class MainWindowController final : public QObject {
    Q_OBJECT

  public:
    static constexpr int height = 650; ///< device-independent pixels, as all sizes here
    static constexpr int narrowWidth = 440;
    static constexpr int wideWidth = 880;

    MainWindowController(MenuBarViewModel& model, AutoSync& automatic, Preferences& preferences);
    ~MainWindowController() override;

    /// Shows the window in the middle of its screen, in front, with the keyboard.
    void showWindowAndCenter();
    /// Hides the window when it is in front; shows it otherwise.
    void toggleWindow();
    /// Widens or narrows the window within its screen.
    void setInspectorExpanded(bool expanded, bool animate);
    void applyTheme(AppTheme theme);
    /// No motion at all while true.
    void setReducesMotion(bool reduces);
    /// What the desktop says of its own look; none: its palette decides.
    void setSystemIsDark(std::optional<bool> isDark);

    /// Builds the window without showing it, so that the first click finds it ready.
    void prepare();

    Dashboard& dashboard() { return dashboard_; }
    /// None before the window was built.
    QQuickView* window() { return view_.get(); }

  Q_SIGNALS:
    void chooseLibraryRequested();
    void reportRequested();
    void runReportRequested();
    void quitRequested();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool isDark() const;
    int wantedWidth() const;
    QRect availableGeometry() const;
    QMargins frameMargins() const;
    bool fillsScreen() const;
    void resizeTo(QRect frame);
    void saveFrame();
    void updateLook();

    MenuBarViewModel& model_;
    Preferences& preferences_;
    Dashboard dashboard_;
    AppTheme theme_;
    bool reducesMotion_ = false;
    std::optional<bool> systemIsDark_;
    QString announced_; ///< the latest title of the state
    QVariantAnimation resizing_;
    QTimer saving_; ///< of the frame, once it rests
    std::unique_ptr<QQuickView> view_;
};

} // namespace quorvane
