#pragma once

#include "foundation/Clock.h"
#include "foundation/Guarded.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace quorvane {

/// One upload in flight.
struct ActiveTransferItem {
    QString id; ///< the record's asset identifier
    QString fileName;
    bool isVideo = false;
    std::int64_t totalBytes = 0;
    std::int64_t bytesTransferred = 0;
    double currentSpeedBytesPerSec = 0;
    Date startedAt{};

    /// The part that is done; 0 for an empty file.
    double progress() const;

    bool operator==(const ActiveTransferItem&) const = default;
};

/// What the live displays show at one moment.
struct TransferSnapshot {
    std::vector<ActiveTransferItem> items; ///< the longest-running first
    QString currentSpeedText;
    QString peakSpeedText;
    double currentSpeed = 0;     ///< bytes per second
    int latencyMilliseconds = 0; ///< a display value, not a measurement
    std::int64_t sentBytes = 0;  ///< since the tracker began, with those of uploads that ended
};

/// The live table of uploads in flight and their throughput. Any thread.
class TransferActivityTracker {
  public:
    /// Gives a uniformly random integer of 0...20. Called under the tracker's lock.
    using LatencyJitter = std::function<int()>;

    explicit TransferActivityTracker(Clock& clock, LatencyJitter jitter = systemJitter);

    /// An item of the same id is replaced.
    void add(const ActiveTransferItem& item);
    void remove(const QString& id);

    /// `bytesSent` is the count since the upload began; an unknown id is ignored. The total stays
    /// the one the item was added with.
    void updateProgress(const QString& id, std::int64_t bytesSent, std::int64_t totalBytes);

    /// Takes a new speed sample when the last one is a quarter of a second old.
    TransferSnapshot getSnapshot();

    /// "976.6 KB/s": decimal threshold, binary units.
    static QString formatSpeed(double bytesPerSecond);

  private:
    static int systemJitter();

    struct Table {
        std::map<QString, ActiveTransferItem> active = {};
        std::int64_t sentBytes = 0;
        std::int64_t sampledBytes = 0; ///< of the active ones, at the last sample
        Clock::Monotonic sampledAt = {};
        double currentSpeed = 0;
        double peakSpeed = 0;

        std::int64_t transferred() const;
        void sampleSpeed(Clock::Monotonic now);
    };

    Clock& clock_;
    LatencyJitter jitter_;
    Guarded<Table> table_;
};

} // namespace quorvane
