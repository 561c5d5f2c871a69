#pragma once

#include "foundation/Console.h"
#include "foundation/Log.h"
#include "google/WebAuthSession.h"
#include "platform/linux/DesktopEnvironment.h"

#include <chrono>
#include <optional>

namespace quorvane {

class BrowserProcess;
class CallbackSocket;

/// Sign-in in the system's browser. The browser hands the callback URL to the desktop, the desktop
/// to "quorvane-cli handle-url", and that to this waiting session through `CallbackSocket`:
///
///     authenticate ──> xdg-open ──> browser ──scheme:/…──> handle-url ──> handOverURL ──┐
///           ^──────────────────────────── CallbackSocket <──────────────────────────────┘
///
/// With an input descriptor the URL may also be pasted there, so that no browser and no display
/// is needed on this computer. A second sign-in, of this process or another, ends the first.
class BrowserAuthSession final : public WebAuthSession {
  public:
    struct Options {
        std::optional<int> input;                                      ///< not owned
        std::chrono::milliseconds patience = std::chrono::minutes(10); ///< for the user
    };

    BrowserAuthSession(DesktopEnvironment environment, Options options, Console& console, Log& log);

    QUrl authenticate(const QUrl& url, const QString& callbackScheme,
                      const std::function<void(bool)>& started, std::stop_token stop) override;

  private:
    class Wait;

    const DesktopEnvironment environment_;
    const Options options_;
    Console& console_;
    Log& log_;
};

/// The sending side, for the command that the desktop runs: hands `url` to the sign-in that waits
/// in any process of this user. False when none waits for it.
bool handOverURL(const DesktopEnvironment& environment, const QString& url);

} // namespace quorvane
