#include "sync/StageAhead.h"

namespace quorvane {

StageAhead::StageAhead(AssetStagingService& staging, const std::stop_token& run, Limits limits)
    : staging_(staging),
      limits_(limits),
      thread_([this](const std::stop_token& stop) { this->run(stop); }),
      onStop_(run, [this] { thread_.request_stop(); }) {}

StageAhead::~StageAhead() = default;

StageAhead::Key StageAhead::keyOf(const SyncRecord& record) {
    return {record.assetLocalIdentifier, record.providerID, record.accountID};
}

void StageAhead::expect(const std::vector<SyncRecord>& records) {
    const auto work = work_.lock();
    work->queue.clear();
    std::map<Key, Staged> stillExpected;
    work->stagedBytes = 0;
    for (const SyncRecord& record : records) {
        // What could not be staged then may be now.
        if (auto known = work->staged.extract(keyOf(record)); known && !known.mapped().error) {
            work->stagedBytes += known.mapped().bytes;
            stillExpected.insert(std::move(known));
        } else if (keyOf(record) != work->inHand) {
            work->queue.push_back(record);
        }
    }
    work->staged = std::move(stillExpected);
    changed_.notify_all();
}

void StageAhead::expectAgain(const SyncRecord& record) {
    work_.lock()->queue.push_back(record);
    changed_.notify_all();
}

std::optional<StagedFile> StageAhead::take(const SyncRecord& record, const std::stop_token& stop) {
    const Key key = keyOf(record);
    Staged staged;
    {
        auto work = work_.lock();
        if (!work->staged.contains(key))
            work->awaited.insert(key);
        changed_.notify_all();
        if (!work.wait(changed_, stop, [&] { return work->staged.contains(key); })) {
            work->awaited.erase(key);
            throw Cancelled();
        }
        staged = std::move(work->staged.extract(key).mapped());
        work->stagedBytes -= staged.bytes;
        changed_.notify_all();
    }
    if (staged.error)
        std::rethrow_exception(staged.error);
    return staged.file;
}

void StageAhead::run(const std::stop_token& stop) noexcept {
    while (const auto record = next(stop)) {
        Staged staged = stage(*record, stop);
        const bool diskIsLow = isDiskLow();
        const auto work = work_.lock();
        work->inHand.reset();
        work->diskIsLow = diskIsLow;
        work->stagedBytes += staged.bytes;
        work->awaited.erase(keyOf(*record));
        work->staged.insert_or_assign(keyOf(*record), std::move(staged));
        changed_.notify_all();
    }
}

/// None when stopped.
std::optional<SyncRecord> StageAhead::next(const std::stop_token& stop) {
    auto work = work_.lock();
    if (!work.wait(changed_, stop, [&] { return work->isDue(limits_); }) || stop.stop_requested())
        return std::nullopt;
    SyncRecord record = std::move(work->queue.front());
    work->queue.pop_front();
    work->inHand = keyOf(record);
    return record;
}

StageAhead::Staged StageAhead::stage(const SyncRecord& record,
                                     const std::stop_token& stop) noexcept {
    Staged staged;
    try {
        staged.file = staging_.stage(record, stop);
        if (staged.file)
            staged.bytes = staged.file->content.sizeBytes;
    } catch (...) {
        staged.error = std::current_exception();
    }
    return staged;
}

bool StageAhead::Work::isDue(const Limits& limits) const {
    const bool hasRoom = staged.size() < limits.records && stagedBytes < limits.bytes && !diskIsLow;
    return !queue.empty() && (!awaited.empty() || hasRoom);
}

/// A disk that cannot be asked is low: what is waited for is staged all the same.
bool StageAhead::isDiskLow() const {
    std::error_code unknown;
    const auto space = std::filesystem::space(staging_.permanentFolder(), unknown);
    return unknown || space.available < limits_.freeBytes;
}

} // namespace quorvane
