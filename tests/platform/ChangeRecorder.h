#pragma once

#include "library/PhotoLibrary.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace quorvane::test {

/// Holds a fetch result as an observer does, and what changed in it. Any thread.
class ChangeRecorder final : public LibraryChangeObserver {
  public:
    explicit ChangeRecorder(AssetFetchResult result) : result_(std::move(result)) {}

    void photoLibraryDidChange(const LibraryChange& change) override {
        std::unique_lock lock(mutex_);
        ++calls_;
        called_.notify_all();
        called_.wait(lock, [this] { return !held_; });
        const auto details = change.changeDetails(result_);
        if (!details)
            return;
        result_ = details->fetchResultAfterChanges;
        collect(inserted_, details->insertedObjects);
        collect(removed_, details->removedObjects);
        collect(changed_, details->changedObjects);
        called_.notify_all();
    }

    /// False after ten seconds without the condition.
    bool waitFor(const std::function<bool()>& condition) {
        std::unique_lock lock(mutex_);
        return called_.wait_for(lock, std::chrono::seconds(10), condition);
    }

    /// Keeps the next calls from returning.
    void hold(bool on) {
        const std::lock_guard lock(mutex_);
        held_ = on;
        called_.notify_all();
    }

    // While nothing changes any more, or in the condition of `waitFor`.
    int calls() const { return calls_; }
    const QStringList& inserted() const { return inserted_; }
    const QStringList& removed() const { return removed_; }
    const QStringList& changed() const { return changed_; }

  private:
    static void collect(QStringList& identifiers, const std::vector<PhotoAsset>& assets) {
        for (const PhotoAsset& asset : assets)
            identifiers.append(asset.localIdentifier);
    }

    std::mutex mutex_;
    std::condition_variable called_;
    AssetFetchResult result_;
    bool held_ = false;
    int calls_ = 0;
    QStringList inserted_, removed_, changed_;
};

} // namespace quorvane::test
