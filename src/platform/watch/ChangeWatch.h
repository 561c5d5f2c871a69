#pragma once

#include "foundation/Log.h"
#include "library/PhotoLibrary.h"
#include "platform/watch/FolderNotifier.h"

#include <functional>
#include <mutex>
#include <thread>

namespace quorvane {

/// When a watched library is looked at.
struct WatchTimes {
    std::chrono::milliseconds settle{500};        ///< of silence end a burst of changes
    std::chrono::milliseconds longestBurst{5000}; ///< a burst is cut here
    std::chrono::milliseconds unfinished{10'000}; ///< between looks while a file is being written
    std::chrono::milliseconds unasked{60'000};    ///< between looks for what the kernel cannot tell
};

/// A library's registered observer and the thread that serves it. The library is asked to look at
/// itself at the beginning, once after each burst of changes in its folders, and now and then
/// without being told, because a kernel says nothing of changes on the other side of a network and
/// may have no room for another watch. Looking takes at most a fifth of the time. Any thread.
class ChangeWatch {
  public:
    struct Found {
        bool changed = false; ///< since the last look; the first time the observer is told anyway
        bool unfinished = false; ///< something will be complete later, maybe without notice
        std::vector<std::filesystem::path> folders; ///< in which changes show
    };
    /// Called on the watching thread. `told`: something did change since the last look; else that
    /// is for the look to find out. What it throws is logged once, and it is called again later.
    using Look = std::function<Found(bool told, const std::stop_token& stop)>;

    /// `name` begins the lines in the log; `change` is what the observer gets.
    ChangeWatch(const QString& name, FolderNotifier::Events events, Look look,
                const LibraryChange& change, Log& log, const WatchTimes& times);

    /// Takes the place of the observer before, if any.
    void observe(LibraryChangeObserver& observer);

    /// Waits for a look or a call that is under way. Not from inside the observer's own call.
    void unobserve(LibraryChangeObserver& observer);

  private:
    class Loop;

    const QString name_;
    const FolderNotifier::Events events_;
    const Look look_;
    const LibraryChange& change_;
    Log& log_;
    const WatchTimes times_;
    std::mutex mutex_; ///< never taken by the thread, which is waited for under it
    LibraryChangeObserver* observer_ = nullptr;
    std::jthread thread_;
};

} // namespace quorvane
