#pragma once

#include "foundation/Console.h"
#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "foundation/Preferences.h"
#include "foundation/Publisher.h"
#include "store/RecordLife.h"
#include "store/UploadTokens.h"
#include "sync/Attempts.h"
#include "sync/Destination.h"

#include <functional>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace quorvane {

/// Items were refused because the target album is full.
struct AlbumLimitReached {};

/// Turns upload tokens into items at the destination, 25 at a time or 30 seconds after the oldest
/// was buffered, beside the uploads: while one batch is under way another one may wait, then the
/// uploads do. Marks each record of one library VERIFIED or FAILED. Any thread. Failures end in the
/// records and the log.
///
///     STAGED -> enqueue -> buffer -> sender -> VERIFIED | FAILED
///                                           -> the same batch again (the world's fault)
///                                           -> STAGED (stopped, the run is over, the album is
///                                              full, or its token is not known any more)
///
/// When the album is full and roll-over is on, the entries held back are sent again at once, into
/// the next part album. One batch rolls over at most once: when the new album refuses as well, or
/// cannot be made, the run is stopped.
class BatchCoordinator {
  public:
    static constexpr std::size_t batchSize = 25;
    static constexpr std::chrono::seconds flushInterval{30};

    /// Not owned; they outlive the coordinator.
    struct Services {
        Destination& destination;
        RecordLife& life;
        UploadTokens& tokens;
        Attempts& attempts;
        Preferences& preferences;
        Log& log;
        Console& console;
        Clock& clock;
    };

    explicit BatchCoordinator(const Services& services) : s_(services) {}

    /// Buffers one entry; waits first while a whole batch is buffered. `stop` is the run's: it also
    /// leaves all that is buffered STAGED. Throws `Cancelled`.
    void enqueue(NewItem item, const SyncRecord& record, std::stop_token stop);

    /// What is buffered becomes a batch, although it is no full one. Waits for nothing.
    void handOver();

    /// The same, and waits until all that was enqueued has been settled, or left STAGED.
    void flush();

    /// Calls `look` with the assets that are enqueued and not settled; none of them is settled
    /// before it returns. Throws what `look` throws.
    void lookAtUnsettled(const std::function<void(const std::set<QString>&)>& look);

    /// Why the store refused to record a result since this was last asked; none when it did not.
    std::optional<QString> takeStoreRefusal();

    /// How many items were at the destination already, since this was last asked.
    int takeAlreadyExisting();

    /// The album is full and items were held back; called on the sending thread. Set while no run
    /// is active.
    std::function<void()> onAlbumFull = [] {};

    /// The record's item is at the destination, and the store knows it; called on the sending
    /// thread. Set before the first use.
    std::function<void(const SyncRecord&)> onCreated = [](const SyncRecord&) {};

    /// Sent on the main thread.
    Publisher<AlbumLimitReached> googlePhotosAlbumLimitReached;

  private:
    /// One uploaded file that waits for its item.
    struct Entry {
        NewItem item;
        SyncRecord record;
    };
    using Batch = std::vector<Entry>;

    /// One whose item is at the destination.
    struct Arrival {
        const Entry& entry;
        const NewItemResult& result;
    };

    /// What became of a batch beyond what its records tell.
    struct Remainder {
        Batch again = {};                  ///< to be sent once more
        Batch heldBack = {};               ///< the album is full
        std::chrono::milliseconds wait{0}; ///< before that
    };

    struct State {
        Batch buffer;
        std::stop_token run;
        std::optional<Clock::Monotonic> deadline; ///< of the oldest buffered entry
        std::stop_source deadlineStop;            ///< the buffer was taken before
        bool isHandedOver = false;
        bool isSending = false;
        std::set<QString> unsettled;
        std::set<QString> sentAgain; ///< their first token was refused
        std::optional<QString> storeRefusal;
        int alreadyExisting = 0;
    };

    void runSender(const std::stop_token& end) noexcept;
    void runTimer(const std::stop_token& end) noexcept;
    void send(Batch batch, const std::stop_token& stop);
    Remainder sendOnce(const Batch& batch, int repeats, const std::stop_token& stop);
    Remainder failed(const Batch& batch, const std::exception& error, Attempts::Permit permit);
    Remainder sort(const Batch& batch, const std::vector<NewItemResult>& results,
                   Attempts::Permit permit);
    std::optional<bool> rollOver(const std::stop_token& stop);
    void endAtLimit(bool stopsRun);

    void settleRefused(const Entry& entry, const NewItemResult& result);
    void settleArrivals(const std::vector<Arrival>& arrivals);
    bool mayBeSentAgain(const Entry& entry);
    std::vector<bool> markVerified(const std::vector<Arrival>& arrivals);
    void markFailed(const Entry& entry, const QString& reason, const std::optional<Fault>& fault);
    bool mark(const Entry& entry, SyncStatus status, const std::function<bool()>& transition);
    void leave(const Batch& batch);
    void logFlushError(const std::exception& error);

    const Services s_;

    std::mutex settling_; ///< held while a record's result is written down; taken before `state_`

    std::condition_variable_any changed_;
    Guarded<State> state_; ///< never locked on the network
    std::jthread
        timer_; ///< these two are started with the first entry; last, so that they end first
    std::jthread sender_;
};

} // namespace quorvane
