#pragma once

#include "platform/macos/MacDesktop.h"
#include "ui/StatusHost.h"
#include "ui/window/MainWindowController.h"

namespace quorvane {

/// A Mac's menu bar is always there.
class MenuBarHost final : public StatusHost {
  public:
    void await(std::function<void()> appeared) override { appeared(); }
};

/// The desktop of a Mac. Main thread.
class MacGui {
  public:
    MacGui(const UserFolders& folders, Log& log) : desktop(folders.home, log) {}

    static bool hasDisplay() { return true; }
    static std::filesystem::path runtimeFolder(const UserFolders& folders) {
        return folders.applicationSupport();
    }
    static QString givenActivationToken() { return {}; } ///< a Mac needs none
    static void useActivationToken(const QString&) {}
    static void becomeAccessory() { MacDesktop::becomeAccessory(); }
    bool openPrivacySettings() {
        desktop.openPrivacySettings();
        return true;
    }

    /// The windows' frames have the theme of what is in them.
    static void follow(MenuBarViewModel& model, MainWindowController& window) {
        const auto apply = [&model] { MacDesktop::useAppearance(model.appTheme()); };
        QObject::connect(&model, &MenuBarViewModel::settingsChanged, &window, apply);
        apply();
        window.setReducesMotion(MacDesktop::reducesMotion());
    }

    MacDesktop desktop;
    MenuBarHost statusHost;
};

} // namespace quorvane
