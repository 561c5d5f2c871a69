#include "sync/PendingQueue.h"

#include <algorithm>

namespace quorvane {

void PendingQueue::begin() {
    unavailable_.lock()->clear();
}

int PendingQueue::count() {
    int pending = 0;
    batches_.lookAtUnsettled([&](const std::set<QString>& unsettled) {
        pending = std::max(0, db_.countPendingRecords() - static_cast<int>(unsettled.size()));
    });
    return pending;
}

void PendingQueue::setUnavailable(const SyncRecord& record) {
    unavailable_.lock()->insert(record.assetLocalIdentifier);
}

int PendingQueue::unavailable() {
    return static_cast<int>(unavailable_.lock()->size());
}

/// Those found unavailable stay pending at the head of the queue and are stepped over unread; one
/// that came back among them meanwhile is found when nothing else is left.
std::vector<SyncRecord> PendingQueue::fetch(int most) {
    std::vector<SyncRecord> records;
    batches_.lookAtUnsettled([&](const std::set<QString>& unsettled) {
        const auto unavailable = unavailable_.lock();
        const int known = static_cast<int>(unavailable->size());
        const int limit = most + static_cast<int>(unsettled.size());
        const auto take = [&](int count, int skipped) {
            records = db_.fetchPendingRecords(count, skipped);
            std::erase_if(records, [&](const SyncRecord& record) {
                return unavailable->contains(record.assetLocalIdentifier) ||
                       unsettled.contains(record.assetLocalIdentifier);
            });
        };
        take(limit, known);
        if (records.empty() && known > 0)
            take(limit + known, 0);
    });
    if (records.size() > static_cast<std::size_t>(most))
        records.resize(static_cast<std::size_t>(most));
    return records;
}

std::vector<SyncRecord> PendingQueue::next(int most, const std::function<void(int)>& recognised,
                                           const std::stop_token& stop) {
    while (true) {
        auto records = fetch(most);
        const auto found = recognition_.examine(records, stop);
        if (found.recognised > 0) {
            recognised(found.recognised);
            continue;
        }
        const auto isWaiting = [&](const SyncRecord& record) {
            return found.waiting.contains(record.assetLocalIdentifier);
        };
        if (!std::ranges::all_of(records, isWaiting))
            std::erase_if(records, isWaiting);
        return records;
    }
}

} // namespace quorvane
