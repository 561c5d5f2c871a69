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
    : clock_(clock), jitter_(std::move(jitter)), table_({.sampledAt = clock.monotonic()}) {}

int TransferActivityTracker::systemJitter() {
    return QRandomGenerator::global()->bounded(latencySpread + 1);
}

void TransferActivityTracker::add(const ActiveTransferItem& item) {
    table_.lock()->active[item.id] = item;
}

void TransferActivityTracker::remove(const QString& id) {
    table_.lock()->active.erase(id);
}

void TransferActivityTracker::updateProgress(const QString& id, std::int64_t bytesSent,
                                             std::int64_t /*totalBytes*/) {
    const auto table = table_.lock();
    if (const auto found = table->active.find(id); found != table->active.end()) {
        table->sentBytes += std::max<std::int64_t>(0, bytesSent - found->second.bytesTransferred);
        found->second.bytesTransferred = bytesSent;
    }
}

TransferSnapshot TransferActivityTracker::getSnapshot() {
    const auto table = table_.lock();
    table->sampleSpeed(clock_.monotonic());
    TransferSnapshot snapshot;
    for (const auto& [id, item] : table->active)
        snapshot.items.push_back(item);
    std::ranges::stable_sort(snapshot.items, {}, &ActiveTransferItem::startedAt);
    snapshot.currentSpeedText = formatSpeed(table->currentSpeed);
    snapshot.peakSpeedText = formatSpeed(table->peakSpeed);
    snapshot.currentSpeed = table->currentSpeed;
    snapshot.latencyMilliseconds = table->active.empty() ? idleLatency : latencyFloor + jitter_();
    snapshot.sentBytes = table->sentBytes;
    return snapshot;
}

std::int64_t TransferActivityTracker::Table::transferred() const {
    std::int64_t total = 0;
    for (const auto& [id, item] : active)
        if (__builtin_add_overflow(total, item.bytesTransferred, &total))
            qFatal("transfer byte counts overflow");
    return total;
}

void TransferActivityTracker::Table::sampleSpeed(Clock::Monotonic now) {
    const std::int64_t total = transferred();
    const auto elapsed = now - sampledAt;
    if (elapsed < sampleInterval)
        return;
    // A transfer that ended has taken its bytes out of the total.
    const std::int64_t delta = std::max<std::int64_t>(0, total - sampledBytes);
    currentSpeed = static_cast<double>(delta) / std::chrono::duration<double>(elapsed).count();
    peakSpeed = std::max(peakSpeed, currentSpeed);
    sampledBytes = total;
    sampledAt = now;
}

QString TransferActivityTracker::formatSpeed(double bytesPerSecond) {
    return bytesPerSecond < 1'000'000
               ? QString::asprintf("%.1f KB/s", bytesPerSecond / 1024)
               : QString::asprintf("%.1f MB/s", bytesPerSecond / (1024 * 1024));
}

} // namespace quorvane
