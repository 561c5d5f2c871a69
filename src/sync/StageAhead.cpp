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
    const std::lock_guard lock(mutex_);
    queue_.clear();
    std::map<Key, Staged> stillExpected;
    stagedBytes_ = 0;
    for (const SyncRecord& record : records) {
        // What could not be staged then may be now.
        if (auto known = staged_.extract(keyOf(record)); known && !known.mapped().error) {
            stagedBytes_ += known.mapped().bytes;
            stillExpected.insert(std::move(known));
        } else if (keyOf(record) != inHand_) {
            queue_.push_back(record);
        }
    }
    staged_ = std::move(stillExpected);
    changed_.notify_all();
}

void StageAhead::expectAgain(const SyncRecord& record) {
    const std::lock_guard lock(mutex_);
    queue_.push_back(record);
    changed_.notify_all();
}

std::optional<StagedFile> StageAhead::take(const SyncRecord& record, const std::stop_token& stop) {
    const Key key = keyOf(record);
    Staged staged;
    {
        std::unique_lock lock(mutex_);
        if (!staged_.contains(key))
            awaited_.insert(key);
        changed_.notify_all();
        if (!changed_.wait(lock, stop, [&] { return staged_.contains(key); })) {
            awaited_.erase(key);
            throw Cancelled();
        }
        staged = std::move(staged_.extract(key).mapped());
        stagedBytes_ -= staged.bytes;
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
        const std::lock_guard lock(mutex_);
        inHand_.reset();
        diskIsLow_ = diskIsLow;
        stagedBytes_ += staged.bytes;
        awaited_.erase(keyOf(*record));
        staged_.insert_or_assign(keyOf(*record), std::move(staged));
        changed_.notify_all();
    }
}

/// None when stopped.
std::optional<SyncRecord> StageAhead::next(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    const auto isDue = [this] { return !queue_.empty() && (!awaited_.empty() || hasRoom()); };
    if (!changed_.wait(lock, stop, isDue) || stop.stop_requested())
        return std::nullopt;
    SyncRecord record = std::move(queue_.front());
    queue_.pop_front();
    inHand_ = keyOf(record);
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

/// Called with `mutex_` held.
bool StageAhead::hasRoom() const {
    return staged_.size() < limits_.records && stagedBytes_ < limits_.bytes && !diskIsLow_;
}

/// A disk that cannot be asked is low: what is waited for is staged all the same.
bool StageAhead::isDiskLow() const {
    std::error_code unknown;
    const auto space = std::filesystem::space(staging_.permanentFolder(), unknown);
    return unknown || space.available < limits_.freeBytes;
}

} // namespace quorvane
