#include "sync/BatchCoordinator.h"

#include "foundation/MainThread.h"

#include <algorithm>

namespace quorvane {

namespace {

/// Stops when either of two others does.
class EitherStop {
  public:
    EitherStop(std::stop_token first, std::stop_token second)
        : first_(std::move(first), Request{source_}),
          second_(std::move(second), Request{source_}) {}

    std::stop_token token() const { return source_.get_token(); }

  private:
    struct Request {
        std::stop_source source;
        void operator()() { source.request_stop(); }
    };
    std::stop_source source_;
    std::stop_callback<Request> first_;
    std::stop_callback<Request> second_;
};

/// Turns every form of a cancellation into `Cancelled`.
void throwIfCancellation(const std::exception& error, const std::stop_token& stop) {
    if (stop.stop_requested() || dynamic_cast<const Cancelled*>(&error) != nullptr ||
        describe(error).contains(u"cancel", Qt::CaseInsensitive))
        throw Cancelled();
}

} // namespace

BatchCoordinator::BatchCoordinator(Destination& destination, RecordLife& life,
                                   Preferences& preferences, Log& log, Console& console,
                                   Clock& clock)
    : destination_(destination),
      life_(life),
      preferences_(preferences),
      log_(log),
      console_(console),
      clock_(clock) {}

void BatchCoordinator::enqueue(const QString& token, const SyncRecord& record,
                               const QString& fileName, std::stop_token stop) {
    {
        const std::lock_guard lock(mutex_);
        buffer_.push_back({token, record, fileName});
        if (buffer_.size() < batchSize) {
            if (!flushTimer_)
                startTimer(std::move(stop));
            return;
        }
        // Taken at once: an entry of the other upload would otherwise make it a batch of 25 and 1.
        std::ranges::move(buffer_, std::back_inserter(fullBatches_));
        buffer_.clear();
        stopTimer();
    }
    sendBuffered(Part::fullBatches, stop);
}

std::optional<QString> BatchCoordinator::takeStoreRefusal() {
    const std::lock_guard lock(mutex_);
    return std::exchange(storeRefusal_, std::nullopt);
}

int BatchCoordinator::takeAlreadyExisting() {
    const std::lock_guard lock(mutex_);
    return std::exchange(alreadyExisting_, 0);
}

/// Called with `mutex_` held.
void BatchCoordinator::startTimer(std::stop_token run) {
    flushTimer_ = {clock_.monotonic() + flushInterval, std::move(run), std::stop_source()};
    if (!timerThread_.joinable())
        timerThread_ = std::jthread([this](std::stop_token end) { runTimer(std::move(end)); });
    timerStarted_.notify_one();
}

void BatchCoordinator::runTimer(std::stop_token end) noexcept {
    while (!end.stop_requested()) {
        std::optional<FlushTimer> timer;
        {
            std::unique_lock lock(mutex_);
            if (!timerStarted_.wait(lock, end, [this] { return flushTimer_.has_value(); }))
                return;
            timer = flushTimer_;
        }
        const auto wait =
            std::chrono::ceil<std::chrono::milliseconds>(timer->deadline - clock_.monotonic());
        if (clock_.sleep(wait, EitherStop(end, timer->cancel.get_token()).token()))
            flush(EitherStop(end, timer->run).token());
    }
}

/// Called with `mutex_` held.
void BatchCoordinator::stopTimer() {
    if (const auto timer = std::exchange(flushTimer_, std::nullopt))
        timer->cancel.request_stop();
}

std::vector<BatchCoordinator::Entry> BatchCoordinator::takeBuffered(Part part) {
    const std::lock_guard lock(mutex_);
    std::vector<Entry> entries = std::exchange(fullBatches_, {});
    if (part == Part::everything) {
        std::ranges::move(buffer_, std::back_inserter(entries));
        buffer_.clear();
        stopTimer();
    }
    return entries;
}

void BatchCoordinator::flush(std::stop_token stop) {
    sendBuffered(Part::everything, stop);
}

void BatchCoordinator::sendBuffered(Part part, const std::stop_token& stop) {
    const std::lock_guard sending(sending_);
    try {
        sendAll(takeBuffered(part), stop);
    } catch (const Cancelled&) {
        log_.log(QStringLiteral("[Batch] İptal algılandı, batch öğeleri STAGED olarak korunuyor"));
    }
}

void BatchCoordinator::sendAll(std::vector<Entry> entries, const std::stop_token& stop) {
    bool hasRolledOver = false;
    while (!entries.empty()) {
        const auto batchEnd =
            entries.begin() + static_cast<std::ptrdiff_t>(std::min(batchSize, entries.size()));
        const std::vector<Entry> batch(entries.begin(), batchEnd);
        entries.erase(entries.begin(), batchEnd);
        const std::vector<Entry> heldBack = sendBatch(batch, stop);
        if (heldBack.empty())
            continue;
        if (!preferences_.boolean(preferenceKeys::autoRolloverOnLimit))
            return endAtLimit(preferences_.boolean(preferenceKeys::stopAtLimit));
        if (hasRolledOver || !rollOver(stop))
            return endAtLimit(true);
        hasRolledOver = true;
        entries.insert(entries.begin(), heldBack.begin(), heldBack.end());
    }
}

/// The entries held back because the album is full; none when it is not, or when the batch failed.
std::vector<BatchCoordinator::Entry> BatchCoordinator::sendBatch(const std::vector<Entry>& batch,
                                                                 const std::stop_token& stop) {
    std::vector<NewItem> items;
    for (const Entry& entry : batch)
        items.push_back({entry.token, entry.fileName});
    std::vector<NewItemResult> results;
    try {
        if (stop.stop_requested())
            throw Cancelled();
        results = destination_.create(items, stop);
    } catch (const std::exception& error) {
        throwIfCancellation(error, stop);
        logFlushError(error);
        for (const Entry& entry : batch)
            markFailed(entry, describe(error));
        return {};
    }
    std::vector<Entry> heldBack;
    for (std::size_t i = 0; i < batch.size(); ++i) {
        if (results.at(i).outcome == NewItemResult::Outcome::heldBack)
            heldBack.push_back(batch[i]);
        else
            settle(batch[i], results[i]);
    }
    return heldBack;
}

/// True when the entries held back have a new album to go to.
bool BatchCoordinator::rollOver(const std::stop_token& stop) {
    console_.print(
        QStringLiteral("[Batch] Albüm limiti aşıldı, otomatik yeni albüm oluşturuluyor..."));
    try {
        destination_.makeNextAlbum(stop);
        return true;
    } catch (const std::exception& error) {
        throwIfCancellation(error, stop);
        logFlushError(error);
        return false;
    }
}

void BatchCoordinator::endAtLimit(bool stopsRun) {
    if (stopsRun)
        console_.print(QStringLiteral("[Batch] Albüm limiti aşıldı, stopAtLimit devrede. "
                                      "Senkronizasyon durduruluyor."));
    onAlbumFull();
    console_.print(
        QStringLiteral("[Sync] 🛑 Albüm sınırı nedeniyle eşitleme otomatik durduruldu"));
    log_.log(QStringLiteral("Google Photos albüm sınırı (20.000 medya) doldu!"));
    onMainThread([publisher = googlePhotosAlbumLimitReached] { publisher.send({}); });
}

void BatchCoordinator::settle(const Entry& entry, const NewItemResult& result) {
    switch (result.outcome) {
    case NewItemResult::Outcome::created:
        markVerified(entry, result.remoteID, result.remoteID);
        break;
    case NewItemResult::Outcome::alreadyExists: {
        markVerified(entry, {}, QStringLiteral("hedefte zaten vardı"));
        const std::lock_guard lock(mutex_);
        ++alreadyExisting_;
        break;
    }
    case NewItemResult::Outcome::refused:
        markFailed(entry, result.reason);
        log_.log(QStringLiteral("[Batch] FAILED: ") + entry.fileName + QStringLiteral(" -> ") +
                 result.detail);
        break;
    case NewItemResult::Outcome::heldBack:
        break; // stays STAGED
    }
}

/// Without a remote id the record is never offered for deletion: the item cannot be asked for.
void BatchCoordinator::markVerified(const Entry& entry, const QString& remoteID,
                                    const QString& told) {
    if (!mark(entry, SyncStatus::verified,
              [&] { return life_.created(entry.record, entry.token, remoteID); }))
        return;
    log_.log(QStringLiteral("[Batch] VERIFIED: ") + entry.fileName + QStringLiteral(" -> ") + told);
    onCreated(entry.record);
}

void BatchCoordinator::markFailed(const Entry& entry, const QString& reason) {
    mark(entry, SyncStatus::failed, [&] { return life_.refused(entry.record, reason); });
}

/// False when the record stayed what it is: the store refused, which must not cost the other
/// entries their result, or the record moved on while its batch was under way.
bool BatchCoordinator::mark(const Entry& entry, SyncStatus status,
                            const std::function<bool()>& transition) {
    const QString outcome =
        rawValue(status) + QStringLiteral("): ") + entry.record.assetLocalIdentifier;
    try {
        if (transition())
            return true;
        log_.log(QStringLiteral("[Batch] ⚠️ Kayıt bu arada değişti, sonuç yazılmadı (") +
                 outcome);
    } catch (const Error& refusal) {
        log_.log(QStringLiteral("[Batch] ❌ Kayıt güncellenemedi (") + outcome +
                 QStringLiteral(" -> ") + refusal.localizedDescription());
        const std::lock_guard lock(mutex_);
        storeRefusal_ = refusal.localizedDescription();
    }
    return false;
}

void BatchCoordinator::logFlushError(const std::exception& error) {
    log_.log(QStringLiteral("[Batch] Flush hatasi: ") + describe(error));
}

} // namespace quorvane
