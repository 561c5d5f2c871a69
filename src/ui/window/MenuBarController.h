#pragma once

#include "ui/window/MainWindowController.h"
#include "ui/window/MenuBarIconAnimator.h"

#include <QMenu>
#include <QSystemTrayIcon>

namespace quorvane {

/// Owns the status item: its icon tells the state, a click toggles the window, and a menu has the
/// essentials for desktops that only open menus. Where there is no tray the window opens instead.
/// Main thread; the model and the window outlive it.
class MenuBarController final : public QObject {
    Q_OBJECT

  public:
    MenuBarController(MenuBarViewModel& model, MainWindowController& window);

    void setupStatusItem();
    void updateStatusItemIcon(SyncVisualState state);
    void statusItemClicked();

    QSystemTrayIcon& statusItem() { return item_; }
    const MenuBarIconAnimator& animator() const { return animator_; }

  private:
    void observeViewModel();
    void buildMenu();
    void updateMenu();
    void awaitTray();
    int itemPixels() const;

    MenuBarViewModel& model_;
    MainWindowController& window_;
    QMenu menu_;
    QSystemTrayIcon item_;
    MenuBarIconAnimator animator_;
    QAction* syncAction_ = nullptr; ///< owned by the menu
    std::optional<SyncVisualState> shownState_;
    QTimer trayTimer_;
    int trayLooks_ = 0;
};

} // namespace quorvane
