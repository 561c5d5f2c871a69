#pragma once

#include "foundation/File.h"

#include <QUrl>

#include <optional>

#include <sys/types.h>

namespace quorvane {

/// The program that shows a web page in the user's browser: xdg-open, in a session of its own and
/// without a terminal. It is not ended with its owner.
class BrowserProcess {
  public:
    BrowserProcess() = default;
    ~BrowserProcess();
    BrowserProcess(const BrowserProcess&) = delete;
    BrowserProcess& operator=(const BrowserProcess&) = delete;

    /// False when the program could not be started.
    bool open(const QUrl& url);

    /// Readable once the program has ended; negative when none runs.
    int descriptor() const { return exit_.get(); }

    /// Call when the descriptor is readable. True when the program reports success.
    bool succeeded();

  private:
    FileDescriptor exit_;
    pid_t pid_ = -1;
};

} // namespace quorvane
