#pragma once

#include "foundation/Guarded.h"
#include "library/AssetStagingService.h"

#include <cstdint>
#include <deque>
#include <exception>
#include <map>
#include <set>
#include <thread>
#include <tuple>

namespace quorvane {

/// Stages the records of a sync run ahead of its uploads, on one thread of its own and in their
/// order, so that an upload never waits for staging that could have been done before it. What is
/// staged and not yet taken is bounded; a record that is waited for is staged whatever the bounds.
/// The thread ends with the object; a stop of the run ends it as well.
class StageAhead {
  public:
    struct Limits {
        std::size_t records = 50;                            ///< one pass
        std::int64_t bytes = std::int64_t{2} << 30;          ///< staged and not taken
        std::uintmax_t freeBytes = std::uintmax_t{1} << 30U; ///< left on the disk
    };

    StageAhead(AssetStagingService& staging, const std::stop_token& run, Limits limits);
    ~StageAhead();
    StageAhead(const StageAhead&) = delete;
    StageAhead& operator=(const StageAhead&) = delete;

    /// The pending records from now on, in the order in which they will be taken. What is staged of
    /// them already stays so; what failed is tried anew.
    void expect(const std::vector<SyncRecord>& records);

    /// One that was taken already will be taken once more. Any thread.
    void expectAgain(const SyncRecord& record);

    /// Waits for the staged file of an expected record, each of which is taken once. None when no
    /// file came of it. Throws what `AssetStagingService::stage` throws. Any thread.
    std::optional<StagedFile> take(const SyncRecord& record, const std::stop_token& stop);

  private:
    using Key = std::tuple<QString, QString, QString>; ///< asset, provider, account
    struct Staged {
        std::optional<StagedFile> file;
        std::int64_t bytes = 0;
        std::exception_ptr error; ///< why it is not known whether there is a file
    };

    struct Work {
        std::deque<SyncRecord> queue;
        std::optional<Key> inHand;
        std::map<Key, Staged> staged; ///< not taken yet
        std::int64_t stagedBytes = 0;
        bool diskIsLow = false;
        std::set<Key> awaited; ///< not staged yet, and an upload waits for it

        bool isDue(const Limits& limits) const;
    };

    static Key keyOf(const SyncRecord& record);
    void run(const std::stop_token& stop) noexcept;
    std::optional<SyncRecord> next(const std::stop_token& stop);
    Staged stage(const SyncRecord& record, const std::stop_token& stop) noexcept;
    bool isDiskLow() const;

    AssetStagingService& staging_;
    const Limits limits_;

    Guarded<Work> work_; ///< never locked over the disk
    std::condition_variable_any changed_;

    std::jthread thread_;
    /// Stops the thread with the run. After it, so that it goes first.
    std::stop_callback<std::function<void()>> onStop_;
};

} // namespace quorvane
