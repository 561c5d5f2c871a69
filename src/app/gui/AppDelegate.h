#pragma once

#include "foundation/Log.h"
#include "library/PhotoLibrary.h"

#include <QUrl>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace quorvane {

/// A modal alert of two buttons; the first is the default, the second answers Escape.
struct AlertText {
    QString message;
    QString information;
    QString primaryButton;
    QString secondaryButton;
    bool isWarning = false;
};

/// The order of the launch, and what the platform calls afterwards. Main thread; nothing blocks:
/// each question carries on when it is answered.
class AppDelegate {
  public:
    /// What the launch creates, asks and starts. On this platform the "system prompt" for the photo
    /// library is the chooser of a library, and its answer is remembered.
    struct Platform {
        std::function<void()> becomeAccessory;         ///< closing the last window never quits
        std::function<void()> createMenuBarController; ///< makes the status item appear
        std::function<void(std::function<void(AuthorizationStatus)>)> authorizationStatus;
        std::function<void(std::function<void(AuthorizationStatus)>)> requestAuthorization;
        /// Answers true for the first button.
        std::function<void(const AlertText&, std::function<void(bool)>)> showAlert;
        std::function<void()> openPrivacySettings;
        std::function<void()> startObserver;
        std::function<void()> stopObserver;
        std::function<void()> refreshState;
        std::function<void(const QUrl&)> handleURL; ///< a sign-in may wait for it
    };

    AppDelegate(Platform platform, Log& log) : platform_(std::move(platform)), log_(log) {}

    void applicationDidFinishLaunching();
    void applicationOpen(const std::vector<QUrl>& urls);
    void applicationWillTerminate();
    static constexpr bool applicationShouldTerminateAfterLastWindowClosed() { return false; }

  private:
    void authorize(AuthorizationStatus status);
    void requestPhotosAuthorizationSafely();
    void showPermissionDeniedAlert();
    void startWork();

    const Platform platform_;
    Log& log_;
};

} // namespace quorvane
