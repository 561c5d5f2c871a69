#pragma once

#include "ui/StatusHost.h"
#include "ui/window/MainWindowController.h"
#include "ui/window/MenuBarIconAnimator.h"

#include <QMenu>
#include <QSystemTrayIcon>

namespace quorvane {

/// Owns the status item: its icon tells the state, a click toggles the window, and a menu has the
/// essentials for desktops that only open menus. Where there is no place for it the window opens
/// instead, and the item follows when there is one. Main thread; what it is given outlives it.
class MenuBarController final : public QObject {
    Q_OBJECT

  public:
    MenuBarController(MenuBarViewModel& model, MainWindowController& window, StatusHost& host);

    void setupStatusItem();
    void updateStatusItemIcon(SyncVisualState state);
    void statusItemClicked();

    /// Null while the desktop has no place for it.
    QSystemTrayIcon* statusItem() { return item_.get(); }
    const MenuBarIconAnimator& animator() const { return animator_; }

  private:
    void observeViewModel();
    void buildMenu();
    void updateMenu();
    void updateToolTip();
    void showItem();
    void openWindowInstead();
    int itemPixels() const;

    MenuBarViewModel& model_;
    MainWindowController& window_;
    QMenu menu_;
    StatusHost& host_;
    /// Made when there is a place for it: the toolkit asks for that once, and keeps the answer.
    std::unique_ptr<QSystemTrayIcon> item_;
    MenuBarIconAnimator animator_;
    QAction* syncAction_ = nullptr; ///< owned by the menu
    std::optional<SyncVisualState> shownState_;
    bool opensInstead_ = false;
};

} // namespace quorvane
