#pragma once

#include "foundation/Log.h"
#include "google/WebAuthSession.h"

namespace quorvane {

/// The system's sign-in sheet. The browser's own session with Google is used again. Needs an
/// application and the event loop of its main thread; blocks, so not to be called on that one.
class SheetAuthSession final : public WebAuthSession {
  public:
    explicit SheetAuthSession(Log& log) : log_(log) {}

    /// The sheet leads back by the program's own scheme, never by an address of this computer.
    QUrl authenticate(const WebAuthRequest& request, const std::function<void(bool)>& started,
                      std::stop_token stop) override;

  private:
    Log& log_;
};

} // namespace quorvane
