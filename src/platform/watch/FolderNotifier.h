#pragma once

#include "foundation/File.h"

#include <chrono>
#include <set>
#include <stop_token>
#include <vector>

namespace quorvane {

/// The kernel's word that something happened in one of a set of folders. It says neither what nor
/// where: whoever needs to know looks, so that a lost notification costs one look and no picture.
/// One thread at a time.
class FolderNotifier {
  public:
    enum class Events {
        entries,  ///< files and folders that came, went, or were written and closed
        contents, ///< every write as well
    };

    explicit FolderNotifier(Events events);

    struct Watched {
        bool gained = false; ///< a folder is watched that was not before: look at it again
        int refused = 0;     ///< folders that the kernel had no room for
    };
    /// Watches these folders and no others.
    Watched watch(const std::vector<std::filesystem::path>& folders);

    enum class Wake { changed, timeout, stopped };
    /// Waits for the first notification. All that arrived is forgotten with it.
    Wake wait(std::chrono::milliseconds atMost, const std::stop_token& stop);

  private:
    void forgetArrived();

    std::uint32_t mask_;
    FileDescriptor notifications_; ///< not open when the kernel gave none
    std::set<int> watched_;
};

} // namespace quorvane
