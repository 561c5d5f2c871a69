#pragma once

#include "platform/linux/desktop/ActivationToken.h"
#include "platform/linux/desktop/DesktopLook.h"
#include "platform/linux/desktop/LinuxDesktop.h"
#include "platform/linux/desktop/LinuxStatusHost.h"
#include "ui/window/MainWindowController.h"

namespace quorvane {

/// A freedesktop.org desktop. Main thread.
class LinuxGui {
  public:
    LinuxGui(const UserFolders& folders, Log& log)
        : desktop(DesktopEnvironment::ofProcess(folders), log) {}

    /// Asked before the toolkit is, which would abort.
    static bool hasDisplay() {
        for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            if (!qEnvironmentVariableIsEmpty(variable))
                return true;
        return false;
    }
    static std::filesystem::path runtimeFolder(const UserFolders& folders) {
        return DesktopEnvironment::ofProcess(folders).runtimeFolder;
    }
    static QString givenActivationToken() { return quorvane::givenActivationToken(); }
    static void useActivationToken(const QString& token) { quorvane::useActivationToken(token); }
    static void becomeAccessory() {}
    static bool openPrivacySettings() { return false; } ///< none: choosing a library is what counts

    /// The window keeps to what the person chose for the desktop.
    void follow(MenuBarViewModel&, MainWindowController& window) {
        QObject::connect(&look_, &DesktopLook::changed, &window, [this, &window] {
            window.setReducesMotion(look_.reducesMotion());
            window.setSystemIsDark(look_.isDark());
        });
        look_.watch();
    }

    LinuxDesktop desktop;
    LinuxStatusHost statusHost;

  private:
    DesktopLook look_;
};

} // namespace quorvane
