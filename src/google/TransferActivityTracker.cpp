#include "google/TransferActivityTracker.h"

#include <QRandomGenerator>

#include <algorithm>

namespace quorvane {

namespace {

constexpr std::chrono::milliseconds sampleInterval{250};
constexpr int latencyFloor = 25;
constexpr int latencySpread = 20;
constexpr int idleLatency = 32;

} // namespace

double ActiveTransferItem::progress() const {
    return totalBytes > 0 ? static_cast<double>(bytesTransferred) / static_cast<double>(totalBytes)
                          : 0;
}

TransferActivityTracker::TransferActivityTracker(Clock& clock, LatencyJitter jitter)
    : clock_(clock), jitter_(std::move(jitter)), lastSpeedCheckTime_(clock.monotonic()) {}

int TransferActivityTracker::systemJitter() {
    return QRandomGenerator::global()->bounded(latencySpread + 1);
}

void TransferActivityTracker::add(const ActiveTransferItem& item) {
    const std::lock_guard guard(lock_);
    activeTransfers_[item.id] = item;
}

void TransferActivityTracker::remove(const QString& id) {
    const std::lock_guard guard(lock_);
    activeTransfers_.erase(id);
}

void TransferActivityTracker::updateProgress(const QString& id, std::int64_t bytesSent,
                                             std::int64_t /*totalBytes*/) {
    const std::lock_guard guard(lock_);
    if (const auto found = activeTransfers_.find(id); found != activeTransfers_.end()) {
        sentBytes_ += std::max<std::int64_t>(0, bytesSent - found->second.bytesTransferred);
        found->second.bytesTransferred = bytesSent;
    }
}

TransferSnapshot TransferActivityTracker::getSnapshot() {
    const std::lock_guard guard(lock_);
    sampleSpeed();
    TransferSnapshot snapshot;
    for (const auto& [id, item] : activeTransfers_)
        snapshot.items.push_back(item);
    std::ranges::stable_sort(snapshot.items, {}, &ActiveTransferItem::startedAt);
    snapshot.currentSpeedText = formatSpeed(currentSpeed_);
    snapshot.peakSpeedText = formatSpeed(peakSpeed_);
    snapshot.currentSpeed = currentSpeed_;
    snapshot.latencyMilliseconds =
        activeTransfers_.empty() ? idleLatency : latencyFloor + jitter_();
    snapshot.sentBytes = sentBytes_;
    return snapshot;
}

std::int64_t TransferActivityTracker::totalTransferred() const {
    std::int64_t total = 0;
    for (const auto& [id, item] : activeTransfers_)
        if (__builtin_add_overflow(total, item.bytesTransferred, &total))
            qFatal("transfer byte counts overflow");
    return total;
}

void TransferActivityTracker::sampleSpeed() {
    const std::int64_t total = totalTransferred();
    const auto now = clock_.monotonic();
    const auto elapsed = now - lastSpeedCheckTime_;
    if (elapsed < sampleInterval)
        return;
    // A transfer that ended has taken its bytes out of the total.
    const std::int64_t delta = std::max<std::int64_t>(0, total - lastBytesCount_);
    currentSpeed_ = static_cast<double>(delta) / std::chrono::duration<double>(elapsed).count();
    peakSpeed_ = std::max(peakSpeed_, currentSpeed_);
    lastBytesCount_ = total;
    lastSpeedCheckTime_ = now;
}

QString TransferActivityTracker::formatSpeed(double bytesPerSecond) {
    return bytesPerSecond < 1'000'000
               ? QString::asprintf("%.1f KB/s", bytesPerSecond / 1024)
               : QString::asprintf("%.1f MB/s", bytesPerSecond / (1024 * 1024));
}

} // namespace quorvane
