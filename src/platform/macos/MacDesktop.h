#pragma once

#include "foundation/Log.h"
#include "ui/Desktop.h"
#include "ui/ViewTypes.h"

namespace quorvane {

/// The Mac's desktop: its notification centre, its workspace, and the program's agent of the login
/// session (a property list for launchd). Main thread.
class MacDesktop final : public Desktop {
  public:
    MacDesktop(std::filesystem::path home, Log& log) : home_(std::move(home)), log_(log) {}

    /// The first notice has the system ask the person whether there may be any. A click on one
    /// brings the program to the front, as the system does by itself, and opens nothing.
    void notify(const Notice& notice) override;
    void open(const std::filesystem::path& file) override;
    void reveal(const std::filesystem::path& file) override;
    bool startsAtLogin() const override;
    void setStartsAtLogin(bool starts) override;

    /// No icon in the Dock and no menu bar of the program's own.
    static void becomeAccessory();
    /// The pane of the system's settings that lists who may see the photos.
    void openPrivacySettings();
    /// Of all the program's windows.
    static void useAppearance(AppTheme theme);
    static bool reducesMotion();

  private:
    std::filesystem::path loginAgent() const;

    const std::filesystem::path home_;
    Log& log_;
};

} // namespace quorvane
