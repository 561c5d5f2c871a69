#pragma once

#include "foundation/Console.h"
#include "foundation/UserFolders.h"
#include "google/WebAuthSession.h"
#include "library/PhotosApp.h"
#include "platform/macos/AppleScripts.h"
#include "platform/macos/KeychainStore.h"
#include "platform/macos/UnifiedLog.h"
#include "platform/macos/UserDefaults.h"

#include <optional>

namespace quorvane {

class MacPhotos final : public PhotosApp {
  public:
    std::unique_ptr<PhotoLibrary> open(DeletionConfirmation& confirmation, Log& log) override;
    void requestAuthorization(const std::stop_token& stop) override;
    PhotosAppScripts& scripts() override { return scripts_; }

  private:
    AppleScripts scripts_;
};

/// What a Mac gives to the composition.
struct MacPorts {
    KeychainStore keychain;
    UnifiedLog log;
    UserDefaults defaults;
    MacPhotos photosApp;

    PhotosApp* photos() { return &photosApp; }
    SettingsStore* settings() { return &defaults; }

    /// The sheet, wherever it is asked from.
    static std::unique_ptr<WebAuthSession>
    signIn(const UserFolders& folders, std::optional<int> input, Console& console, Log& log);
    /// False: the sheet gets its answer by itself.
    static bool handOver(const UserFolders& folders, const QString& url);
};

} // namespace quorvane
