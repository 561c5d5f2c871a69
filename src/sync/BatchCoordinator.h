#pragma once

#include "foundation/Clock.h"
#include "foundation/Console.h"
#include "foundation/Log.h"
#include "foundation/Preferences.h"
#include "foundation/Publisher.h"
#include "store/RecordLife.h"
#include "sync/Destination.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace quorvane {

/// Items were refused because the target album is full.
struct AlbumLimitReached {};

/// Turns upload tokens into items at the destination, 25 at a time or 30 seconds after the oldest
/// was buffered, and marks each record of one library VERIFIED or FAILED. Any thread. Failures end
/// in the records and the log: `enqueue` and `flush` throw nothing of their own.
///
///     STAGED -> enqueue -> buffer -> flush -> VERIFIED | FAILED
///                                          -> STAGED (stopped, or the album is full)
///
/// When the album is full and roll-over is on, the entries held back are sent again at once, into
/// the next part album. One flush rolls over at most once: when the new album refuses as well, or
/// cannot be made, the run is stopped. So no entry is in the buffer when a flush ends, except those
/// that were enqueued meanwhile.
class BatchCoordinator {
  public:
    static constexpr std::size_t batchSize = 25;
    static constexpr std::chrono::seconds flushInterval{30};

    BatchCoordinator(Destination& destination, RecordLife& life, Preferences& preferences, Log& log,
                     Console& console, Clock& clock);

    /// Buffers one entry; the 25th sends them all. `stop` is the run's: it also stops the timed
    /// flush of this entry. An empty `fileName` leaves the name to the destination.
    void enqueue(const QString& token, const SyncRecord& record, const QString& fileName,
                 std::stop_token stop);

    /// Sends everything buffered. Waits for a flush of another thread that is under way, so that on
    /// return all that was enqueued before has been settled. A stop leaves the records STAGED.
    void flush(std::stop_token stop);

    /// Why the store refused to record a result since this was last asked; none when it did not.
    std::optional<QString> takeStoreRefusal();

    /// How many items were at the destination already, since this was last asked.
    int takeAlreadyExisting();

    /// The album is full and items were held back; called on the flushing thread. Set while no run
    /// is active.
    std::function<void()> onAlbumFull = [] {};

    /// The record's item is at the destination, and the store knows it; called on the flushing
    /// thread. Set before the first use.
    std::function<void(const SyncRecord&)> onCreated = [](const SyncRecord&) {};

    /// Sent on the main thread.
    Publisher<AlbumLimitReached> googlePhotosAlbumLimitReached;

  private:
    /// One uploaded file that waits for its item.
    struct Entry {
        QString token;
        SyncRecord record;
        QString fileName;
    };

    struct FlushTimer {
        Clock::Monotonic deadline;
        std::stop_token run;
        std::stop_source cancel;
    };

    enum class Part { fullBatches, everything };

    void startTimer(std::stop_token run);
    void stopTimer();
    void runTimer(std::stop_token end) noexcept;
    std::vector<Entry> takeBuffered(Part part);
    void sendBuffered(Part part, const std::stop_token& stop);

    void sendAll(std::vector<Entry> entries, const std::stop_token& stop);
    std::vector<Entry> sendBatch(const std::vector<Entry>& batch, const std::stop_token& stop);
    bool rollOver(const std::stop_token& stop);
    void endAtLimit(bool stopsRun);

    void settle(const Entry& entry, const NewItemResult& result);
    void markVerified(const Entry& entry, const QString& remoteID, const QString& told);
    void markFailed(const Entry& entry, const QString& reason);
    bool mark(const Entry& entry, SyncStatus status, const std::function<bool()>& transition);
    void logFlushError(const std::exception& error);

    Destination& destination_;
    RecordLife& life_;
    Preferences& preferences_;
    Log& log_;
    Console& console_;
    Clock& clock_;

    /// Held while a batch is on the network: the items of an account are created one request after
    /// the other, and a roll-over must happen once. Taken before `mutex_`.
    std::mutex sending_;

    std::mutex mutex_;               ///< guards the fields below; never held on the network
    std::vector<Entry> buffer_;      ///< fewer than `batchSize`
    std::vector<Entry> fullBatches_; ///< wait for their turn to be sent
    std::optional<QString> storeRefusal_;
    int alreadyExisting_ = 0;
    std::optional<FlushTimer> flushTimer_; ///< set while a timed flush is pending
    std::condition_variable_any timerStarted_;
    std::jthread timerThread_; ///< started with the first timer; last, so that it ends first
};

} // namespace quorvane
