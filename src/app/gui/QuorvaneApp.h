#pragma once

#include "app/LibraryHost.h"
#include "app/SystemPorts.h"
#include "app/gui/AppDelegate.h"
#include "app/gui/SystemDialogs.h"
#include "platform/linux/BrowserAuthSession.h"
#include "platform/linux/desktop/DesktopLook.h"
#include "platform/linux/desktop/LinuxDesktop.h"
#include "platform/linux/desktop/LinuxStatusHost.h"
#include "ui/window/MenuBarController.h"

namespace quorvane {

/// The whole program with a window, from the ground up: the house, and on it what a person sees.
/// Main thread.
class QuorvaneApp {
  public:
    explicit QuorvaneApp(const DesktopEnvironment& environment);
    ~QuorvaneApp();
    QuorvaneApp(const QuorvaneApp&) = delete;
    QuorvaneApp& operator=(const QuorvaneApp&) = delete;

  private:
    MenuBarViewModel::Services modelServices();
    std::vector<CheckedThing> checkedThings(const std::stop_token& stop);
    AppDelegate::Platform launchPlatform();
    void chooseLibrary(const LibraryHost::Answer& answer);

    const DesktopEnvironment environment_;
    Console console_;
    SystemPorts system_;
    SystemDialogs dialogs_;
    DialogConfirmation confirmation_{dialogs_};
    CoreServices core_{UserFolders::ofCurrentUser(), system_.with(console_, confirmation_)};
    BrowserAuthSession signIn_{environment_, {}, console_, core_.logger};
    GoogleServices google_{core_, signIn_};
    LinuxDesktop desktop_{environment_, core_.logger};
    LibraryHost library_{core_, google_};
    MenuBarViewModel model_{modelServices(), core_.logger.memoryBuffer()};
    MainWindowController window_{model_, core_.preferences};
    LinuxStatusHost statusHost_;
    MenuBarController menuBarController_{model_, window_, statusHost_};
    DesktopLook look_;

  public:
    AppDelegate appDelegate{launchPlatform(), core_.logger};

    void bringToFront() { window_.showWindowAndCenter(); }
};

} // namespace quorvane
