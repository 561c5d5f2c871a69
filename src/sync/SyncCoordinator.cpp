#include "sync/SyncCoordinator.h"

#include "foundation/File.h"
#include "foundation/MainThread.h"
#include "sync/Backoff.h"
#include "sync/RecordUploadMemory.h"

#include <algorithm>
#include <thread>

namespace quorvane {

QString uploadName(const SyncRecord& record, const std::filesystem::path& file) {
    const QString name = pathText(file.filename());
    const QString prefix = QString(record.assetLocalIdentifier).replace(u'/', u'_') + u'_';
    return name.startsWith(prefix) ? name.mid(prefix.size()) : name;
}

namespace {

const QString storeText = QStringLiteral("durum veritabanına yazılamadı (%1)");

/// Removes the transfer from the live table on every way out.
class ActiveTransfer {
  public:
    ActiveTransfer(TransferActivityTracker& tracker, const ActiveTransferItem& item)
        : tracker_(tracker), id_(item.id) {
        tracker_.add(item);
    }
    ~ActiveTransfer() { tracker_.remove(id_); }
    ActiveTransfer(const ActiveTransfer&) = delete;
    ActiveTransfer& operator=(const ActiveTransfer&) = delete;

  private:
    TransferActivityTracker& tracker_;
    QString id_;
};

} // namespace

SyncCoordinator::SyncCoordinator(Services services, StageAhead::Limits stagingLimits)
    : s_(services),
      dateGate_({services.db, services.life, services.staging, services.metadata,
                 services.preferences, services.console}),
      stagingLimits_(stagingLimits) {}

SyncCoordinator::Summary SyncCoordinator::drainPendingQueue(bool deletionEnabled,
                                                            ProgressHandler progressHandler) {
    const int total = pendingOrZero();
    {
        const std::lock_guard lock(mutex_);
        summary_ = Summary();
        summary_.total = total;
        consecutiveErrors_ = 0;
        unavailable_.clear();
        currentProgressHandler_ = std::move(progressHandler);
    }
    if (!s_.flags.isCancelled()) {
        stageAhead_.emplace(s_.staging, s_.flags.stopToken(), stagingLimits_);
        runPasses();
        stageAhead_.reset(); // nothing is staged any more while originals are deleted
    }
    DeletionSummary deletion;
    if (!s_.flags.isCancelled())
        deletion = s_.deletion.performDeletion(deletionEnabled, s_.flags.stopToken());

    const std::lock_guard lock(mutex_);
    summary_.deletion = std::move(deletion);
    currentProgressHandler_ = nullptr;
    summary_.cancelled = s_.flags.isCancelled();
    summary_.unavailable = static_cast<int>(unavailable_.size());
    return summary_;
}

int SyncCoordinator::pendingOrZero() {
    try {
        return s_.db.countPendingRecords();
    } catch (const DBError&) {
        return 0;
    }
}

void SyncCoordinator::runPasses() {
    int pending = pendingOrZero();
    for (int pass = 1; pending > 0; ++pass) {
        s_.log.log(
            QStringLiteral("[Sync] Kuyruk gecisi %1: %2 medya bekliyor").arg(pass).arg(pending));
        const bool triedAny = runSyncLoop();
        if (s_.flags.isCancelled()) {
            s_.log.log(QStringLiteral("[Sync] İptal bayrağı algılandı, döngü sonlandırılıyor"));
            return;
        }
        pending = pendingOrZero();
        catchUpProgress(pending);
        if (onPassEnded)
            onPassEnded();
        {
            const std::lock_guard lock(mutex_);
            summary_.passes = pass;
            if (summary_.failure)
                return;
        }
        if (!triedAny) {
            s_.log.log(
                QStringLiteral("[Sync] ⚠️ %1 medya şu anda arşivden alınamıyor; sonraki "
                               "eşitlemede yeniden denenecek.")
                    .arg(pending));
            return;
        }
        if (pass >= maximumSyncPasses) {
            if (pending > 0)
                s_.log.log(QStringLiteral("[Sync] Güvenlik sinirina ulasildi; kuyruk sonraki "
                                          "esitlemede devam edecek."));
            return;
        }
        if (s_.flags.isCancelled()) {
            s_.log.log(
                QStringLiteral("[Sync] İptal bayrağı algılandı, kuyruk geçişi sonlandırılıyor"));
            return;
        }
    }
}

/// One pass. False when there was nothing left that this run has not found unavailable.
bool SyncCoordinator::runSyncLoop() {
    std::vector<SyncRecord> records;
    try {
        s_.sessions.forgetExpired();
        records = nextRecords();
    } catch (const DBError& error) {
        s_.console.print(QStringLiteral("[Sync] DB okuma hatasi: ") + error.localizedDescription());
        endBecauseOf(storeText.arg(error.localizedDescription()));
        return false;
    } catch (const Cancelled&) {
        return false;
    }
    if (records.empty()) {
        // The run's end, which follows at once, also does what safe deletion there is to do.
        s_.console.print(QStringLiteral("[Sync] Bekleyen kayit yok"));
        return false;
    }
    stageAhead_->expect(records);
    if (records.size() > passSize)
        records.resize(passSize);
    s_.console.print(QStringLiteral("[Sync] %1 kayit isleniyor").arg(records.size()));
    const int completedBefore = completed();
    processAll(std::move(records));
    s_.batchCoord.flush(s_.flags.stopToken());
    // What was sent in this pass makes room for the next one.
    if (const auto full = takeDiskFull(); full && completed() == completedBefore)
        endBecauseOf(*full);
    if (const auto refusal = s_.batchCoord.takeStoreRefusal())
        endBecauseOf(storeText.arg(*refusal)); // else the same bytes again in every pass
    return true;
}

/// The oldest pending records that are to be sent: this pass, and the next one for the staging to
/// go on with. Those found unavailable stay pending at the head of the queue and are stepped over
/// unread; one that came back among them meanwhile is found when nothing else is left. A copy of
/// bytes that are under way waits until nothing else is left. Called between two passes, when no
/// worker runs.
std::vector<SyncRecord> SyncCoordinator::nextRecords() {
    constexpr int window = 2 * passSize;
    const auto fetch = [&](int limit, int skipped) {
        auto records = s_.db.fetchPendingRecords(limit, skipped);
        std::erase_if(records, [&](const SyncRecord& record) {
            return unavailable_.contains(record.assetLocalIdentifier);
        });
        return records;
    };
    while (true) {
        const auto known = static_cast<int>(unavailable_.size());
        auto records = fetch(window, known);
        if (records.empty() && known > 0)
            records = fetch(window + known, 0);
        if (records.size() > window)
            records.resize(window);
        const auto found = s_.recognition.examine(records, s_.flags.stopToken());
        if (found.recognised > 0) {
            finishRecognised(found.recognised);
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

void SyncCoordinator::processAll(std::vector<SyncRecord> records) {
    Pass pass{std::move(records)};
    std::vector<std::jthread> workers;
    for (int i = 0; i < maxConcurrent; ++i)
        workers.emplace_back([this, &pass] { work(pass); });
}

/// One worker is one record in flight; records start in the fetched order.
void SyncCoordinator::work(Pass& pass) {
    while (true) {
        const SyncRecord* record = nullptr;
        {
            const std::lock_guard lock(mutex_);
            if (pass.next == pass.records.size() || summary_.failure || diskFull_)
                return;
            if (!s_.flags.isCancelled())
                record = &pass.records[pass.next++];
            else if (std::exchange(pass.stopLogged, true))
                return;
        }
        if (record == nullptr) {
            s_.log.log(QStringLiteral("[Sync] İptal bayrağı algılandı, batch sonlandırılıyor"));
            return;
        }
        processRecord(*record);
    }
}

/// Every error of a record ends here: in its status, or, when it is this computer's fault, in the
/// end of the run.
void SyncCoordinator::processRecord(const SyncRecord& record) noexcept {
    try {
        try {
            upload(record, s_.flags.stopToken());
        } catch (const DBError&) {
            throw;
        } catch (const StagingDiskFull& error) {
            const std::lock_guard lock(mutex_);
            diskFull_ = error.localizedDescription();
        } catch (const std::exception& error) {
            handleFailure(record, error);
        }
    } catch (const std::exception& error) {
        s_.console.print(QStringLiteral("[Sync] DB yazma hatasi: ") + describe(error));
        endBecauseOf(storeText.arg(describe(error)));
    }
}

void SyncCoordinator::upload(const SyncRecord& record, std::stop_token stop) {
    auto file = stageAhead_->take(record, stop);
    if (!file)
        return leaveOut(record);
    if (!dateGate_.passes(record, *file, stop))
        return;
    const std::int64_t bytes = file->content.sizeBytes;
    const QString name = uploadName(record, file->path);
    {
        ActiveTransferItem item;
        item.id = record.assetLocalIdentifier;
        item.fileName = name;
        item.isVideo = record.mediaType == MediaType::video;
        item.totalBytes = bytes;
        item.startedAt = s_.clock.now();
        const ActiveTransfer transfer(s_.tracker, item);
        const auto progress = [&](std::int64_t sent, std::int64_t total) {
            s_.tracker.updateProgress(item.id, sent, total);
        };
        RecordUploadMemory memory(s_.sessions, record, file->content);
        const QString token =
            s_.destination.upload({file->path, name, item.isVideo}, memory, progress, stop);
        if (fileVersion(file->path) != file->version) { // nobody knows what was sent
            s_.life.requeued(record);
            return;
        }
        s_.batchCoord.enqueue(token, record, name, stop);
    }
    finishRecord(bytes);
}

/// No file came of the record. Unless its staging failed, it stays pending for a later run.
void SyncCoordinator::leaveOut(const SyncRecord& record) {
    if (s_.db.fetchStatus(record) != SyncStatus::discovered)
        return;
    const std::lock_guard lock(mutex_);
    unavailable_.insert(record.assetLocalIdentifier);
}

void SyncCoordinator::handleFailure(const SyncRecord& record, const std::exception& error) {
    const QString description = describe(error);
    if (s_.flags.isCancelled() || dynamic_cast<const Cancelled*>(&error) != nullptr ||
        description.toLower().contains(u"cancel")) {
        s_.console.print(QStringLiteral("[Sync] İptal bayrağı/cancellation algılandı, dosya FAILED "
                                        "yapılmıyor: ") +
                         record.assetLocalIdentifier);
        s_.life.requeued(record);
        return;
    }
    int errors = 0;
    {
        // One count for both records in flight: two failures at once are two failures in a row, so
        // the second of them waits twice as long as the first.
        const std::lock_guard lock(mutex_);
        errors = ++consecutiveErrors_;
    }
    const auto wait = backoffAfter(errors);
    s_.console.print(
        QStringLiteral("[Sync] Hata (%1x), %2s bekleniyor: %3")
            .arg(errors)
            .arg(QString::number(static_cast<double>(wait.count()), 'f', 1), description));
    if (!s_.life.refused(record, description))
        s_.life.stageFailed(record, description);
    s_.clock.sleep(wait, s_.flags.stopToken());
}

std::optional<QString> SyncCoordinator::takeDiskFull() {
    const std::lock_guard lock(mutex_);
    return std::exchange(diskFull_, std::nullopt);
}

int SyncCoordinator::completed() {
    const std::lock_guard lock(mutex_);
    return summary_.completed;
}

void SyncCoordinator::endBecauseOf(const QString& failure) {
    const std::lock_guard lock(mutex_);
    summary_.failure = failure;
}

void SyncCoordinator::finishRecognised(int count) {
    {
        const std::lock_guard lock(mutex_);
        summary_.completed += count;
        summary_.recognised += count;
    }
    reportProgress();
}

void SyncCoordinator::finishRecord(std::int64_t bytes) {
    {
        const std::lock_guard lock(mutex_);
        consecutiveErrors_ = 0;
        ++summary_.completed;
        summary_.uploadedBytes += bytes;
    }
    reportProgress();
}

/// Counts what left the queue in another way (failed, held back), never running backwards.
void SyncCoordinator::catchUpProgress(int pending) {
    {
        const std::lock_guard lock(mutex_);
        summary_.completed = std::max(summary_.completed, summary_.total - pending);
    }
    reportProgress();
}

void SyncCoordinator::reportProgress() {
    const std::lock_guard lock(mutex_);
    if (!currentProgressHandler_)
        return;
    // Queued under the lock, so that the main thread sees the counts in their order.
    onMainThread([handler = currentProgressHandler_,
                  completed = std::min(summary_.total, summary_.completed),
                  total = summary_.total] { handler(completed, total); });
}

} // namespace quorvane
