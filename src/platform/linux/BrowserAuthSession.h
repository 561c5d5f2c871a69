#pragma once

#include "foundation/Console.h"
#include "foundation/Log.h"
#include "google/WebAuthSession.h"
#include "platform/linux/DesktopEnvironment.h"

#include <chrono>
#include <optional>

namespace quorvane {

/// Sign-in in the system's browser. The browser asks the waiting session's `LoopbackListener` for
/// the callback URL; or, where the client returns by a scheme, it hands the URL to the desktop, the
/// desktop to "quorvane-cli handle-url", and that to the session's `CallbackSocket`:
///
///     authenticate ──> xdg-open ──> browser ──scheme:/…──> handle-url ──> handOverURL ──┐
///           ^  ^                       └──http://127.0.0.1:…──> LoopbackListener ──┐    │
///           │  └───────────────────────────────────────────────────────────────────┘    │
///           └─────────────────────────── CallbackSocket <───────────────────────────────┘
///
/// The URL may also be pasted, into an input descriptor or through `handOverURL`, so that no
/// browser and no display is needed on this computer. A second sign-in, of this process or another,
/// ends the first.
class BrowserAuthSession final : public WebAuthSession {
  public:
    struct Options {
        std::optional<int> input;                                      ///< not owned
        std::chrono::milliseconds patience = std::chrono::minutes(10); ///< for the user
    };

    BrowserAuthSession(DesktopEnvironment environment, Options options, Console& console, Log& log);

    QUrl authenticate(const WebAuthRequest& request, const std::function<void(bool)>& started,
                      std::stop_token stop) override;

  private:
    struct Ways;
    class Wait;

    void prepare(const WebAuthRequest& request, const QString& scheme, Ways& ways);

    const DesktopEnvironment environment_;
    const Options options_;
    Console& console_;
    Log& log_;
};

/// The sending side, for the command that the desktop runs and for pasting in the window: hands
/// `url` to the sign-in that waits in any process of this user. False when none waits for it.
bool handOverURL(const DesktopEnvironment& environment, const QString& url);

} // namespace quorvane
