#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <stop_token>
#include <vector>

namespace quorvane {

/// The system's word that something happened in one of a set of folders. It says neither what nor
/// where: whoever needs to know looks, so that a lost notification costs one look and no picture.
/// One thread at a time.
class FolderNotifier {
  public:
    enum class Events {
        entries,  ///< files and folders that came, went, or were written and closed
        contents, ///< every write as well
    };

    virtual ~FolderNotifier() = default;
    static std::unique_ptr<FolderNotifier> make(Events events);

    struct Watched {
        bool gained = false; ///< a folder is watched that was not before: look at it again
        int refused = 0;     ///< folders that the system had no room for
    };
    /// Watches these folders and no others.
    virtual Watched watch(const std::vector<std::filesystem::path>& folders) = 0;

    enum class Wake { changed, timeout, stopped };
    /// Waits for the first notification. All that arrived is forgotten with it.
    virtual Wake wait(std::chrono::milliseconds atMost, const std::stop_token& stop) = 0;
};

} // namespace quorvane
