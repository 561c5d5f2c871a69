#pragma once

#include "app/LibraryHost.h"
#include "app/SystemPorts.h"
#include "app/gui/AppDelegate.h"
#include "app/gui/GuiPlatform.h"
#include "app/gui/SystemDialogs.h"
#include "ui/window/MenuBarController.h"

namespace quorvane {

/// The whole program with a window, from the ground up: the house, and on it what a person sees.
/// Main thread.
class QuorvaneApp {
  public:
    explicit QuorvaneApp(const UserFolders& folders);
    ~QuorvaneApp();
    QuorvaneApp(const QuorvaneApp&) = delete;
    QuorvaneApp& operator=(const QuorvaneApp&) = delete;

  private:
    MenuBarViewModel::Services modelServices();
    QByteArray reportPage(const FinishedRun& run);
    std::vector<CheckedThing> checkedThings(const std::stop_token& stop);
    AppDelegate::Platform launchPlatform();
    void chooseLibrary(const LibraryHost::Answer& answer);

    Console console_;
    SystemPorts system_;
    SystemDialogs dialogs_;
    TrashQuestion trash_;
    CoreServices core_;
    GuiPlatform platform_{core_.folders, core_.logger};
    const std::unique_ptr<WebAuthSession> signIn_ =
        PlatformPorts::signIn(core_.folders, {}, console_, core_.logger);
    GoogleServices google_{core_, *signIn_};
    LibraryHost library_{core_, google_};
    MenuBarViewModel model_{modelServices(), core_.logger.memoryBuffer()};
    AutoSync automatic_{model_, {core_.preferences, core_.clock, platform_.desktop}};
    MainWindowController window_{model_, automatic_, core_.preferences};
    MenuBarController menuBarController_{model_, window_, platform_.statusHost};

  public:
    AppDelegate appDelegate{launchPlatform(), core_.logger};

    void bringToFront() { window_.showWindowAndCenter(); }
    MenuBarViewModel& model() { return model_; }
};

} // namespace quorvane
