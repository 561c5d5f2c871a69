#include "sync/SyncCoordinator.h"

#include "foundation/File.h"
#include "foundation/MainThread.h"
#include "sync/Backoff.h"

#include <algorithm>
#include <thread>

namespace quorvane {

QString uploadName(const SyncRecord& record, const std::filesystem::path& file) {
    const QString name = pathText(file.filename());
    const QString prefix = QString(record.assetLocalIdentifier).replace(u'/', u'_') + u'_';
    return name.startsWith(prefix) ? name.mid(prefix.size()) : name;
}

namespace {

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
    : s_(services), stagingLimits_(stagingLimits) {}

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
        stageAhead_.emplace(s_.staging, s_.db, s_.flags.stopToken(), stagingLimits_);
        runPasses();
        stageAhead_.reset(); // nothing is staged any more while originals are deleted
    }
    if (!s_.flags.isCancelled())
        s_.deletion.performDeletion(deletionEnabled, s_.flags.stopToken());

    const std::lock_guard lock(mutex_);
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
            if (summary_.storeFailure)
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
        records = nextRecords();
    } catch (const DBError& error) {
        s_.console.print(QStringLiteral("[Sync] DB okuma hatasi: ") + error.localizedDescription());
        const std::lock_guard lock(mutex_);
        summary_.storeFailure = error.localizedDescription();
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
    processAll(std::move(records));
    s_.batchCoord.flush(s_.flags.stopToken());
    if (auto refusal = s_.batchCoord.takeStoreRefusal()) {
        const std::lock_guard lock(mutex_);
        summary_.storeFailure = std::move(refusal); // else the same bytes again in every pass
    }
    return true;
}

/// The oldest pending records without those found unavailable: this pass, and the next one for the
/// staging to go on with. The unavailable stay pending at the head of the queue and are stepped
/// over unread. A record that came back among them meanwhile is found when nothing else is left.
/// Called between two passes, when no worker runs.
std::vector<SyncRecord> SyncCoordinator::nextRecords() {
    constexpr int window = 2 * passSize;
    const auto known = static_cast<int>(unavailable_.size());
    const auto fetch = [&](int limit, int skipped) {
        auto records = s_.db.fetchPendingRecords(limit, skipped);
        std::erase_if(records, [&](const SyncRecord& record) {
            return unavailable_.contains(record.assetLocalIdentifier);
        });
        return records;
    };
    auto records = fetch(window, known);
    if (records.empty() && known > 0)
        records = fetch(window + known, 0);
    if (records.size() > window)
        records.resize(window);
    return records;
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
            if (pass.next == pass.records.size() || summary_.storeFailure)
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

/// Every error of a record ends here: in its status, or, when the store refuses even that, in the
/// end of the run.
void SyncCoordinator::processRecord(const SyncRecord& record) noexcept {
    try {
        try {
            upload(record, s_.flags.stopToken());
        } catch (const std::exception& error) {
            handleFailure(record, error);
        }
    } catch (const std::exception& error) {
        endBecauseOfStore(error);
    }
}

void SyncCoordinator::upload(const SyncRecord& record, std::stop_token stop) {
    const auto file = stageAhead_->take(record, stop);
    if (!file)
        return leaveOut(record);
    if (!passesDateGate(record, *file))
        return;
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(*file));
    const QString name = uploadName(record, *file);
    {
        ActiveTransferItem item;
        item.id = record.assetLocalIdentifier;
        item.fileName = name;
        item.isVideo = record.mediaType == MediaType::video;
        item.totalBytes = bytes;
        item.startedAt = s_.clock.now();
        const ActiveTransfer transfer(s_.tracker, item);
        const QString token = s_.uploadTask.upload(record, *file, name, stop);
        s_.batchCoord.enqueue(token, record, name, stop);
    }
    finishRecord(bytes);
}

/// No file came of the record. Unless its staging failed, it stays pending for a later run.
void SyncCoordinator::leaveOut(const SyncRecord& record) {
    // Written once more as it is: a store that refused the staging refuses this too, and says so.
    const bool isPending = s_.db.ifStatusIs(SyncStatus::discovered, record,
                                            [&] { setStatus(record, SyncStatus::discovered); });
    if (!isPending)
        return;
    const std::lock_guard lock(mutex_);
    unavailable_.insert(record.assetLocalIdentifier);
}

/// False when the file has no trustworthy date: the record is then held back. The destination would
/// otherwise file it under the upload day.
bool SyncCoordinator::passesDateGate(const SyncRecord& record, const std::filesystem::path& file) {
    MetadataResult result = MetadataResult::failed({});
    if (!s_.metadata.hasEmbeddedDate(file)) {
        const auto mode =
            dateFallbackModeFrom(
                s_.preferences.string(preferenceKeys::dateFallbackMode).value_or(QString()))
                .value_or(DateFallbackMode::strictNone);
        result = s_.staging.ensureMetadata(file, record.assetLocalIdentifier, mode);
        if (result.which == MetadataResult::Case::success)
            recordContent(record, file);
    }
    if (result.which == MetadataResult::Case::unresolvedDate)
        s_.console.print(
            QStringLiteral(
                "[Sync] 🛑 Tarih tespit edilemedi (DATE_UNRESOLVED), upload engellendi: ") +
            record.assetLocalIdentifier);
    else if (!s_.metadata.hasEmbeddedDate(file))
        s_.console.print(
            QStringLiteral(
                "[Sync] 🛑 Dosyada geçerli gömülü tarih bulunamadı, upload engellendi: ") +
            record.assetLocalIdentifier);
    else
        return true;
    setStatus(record, SyncStatus::dateUnresolved,
              QStringLiteral("Tarih tespit edilemedi - Google Photos hatalı tarih koruması"));
    return false;
}

/// The file is not the one that was hashed when it was staged any more.
void SyncCoordinator::recordContent(SyncRecord record, const std::filesystem::path& file) {
    const HashAndSize content = AssetStagingService::computeHashAndSize(file, s_.flags.stopToken());
    record.sha256Hash = content.sha256;
    record.fileSizeBytes = content.sizeBytes;
    record.syncStatus = SyncStatus::staged;
    s_.db.upsertRecord(record);
}

void SyncCoordinator::handleFailure(const SyncRecord& record, const std::exception& error) {
    const QString description = describe(error);
    if (s_.flags.isCancelled() || dynamic_cast<const Cancelled*>(&error) != nullptr ||
        description.toLower().contains(u"cancel")) {
        s_.console.print(QStringLiteral("[Sync] İptal bayrağı/cancellation algılandı, dosya FAILED "
                                        "yapılmıyor: ") +
                         record.assetLocalIdentifier);
        setStatus(record, SyncStatus::discovered);
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
    setStatus(record, SyncStatus::failed, description);
    s_.clock.sleep(wait, s_.flags.stopToken());
}

void SyncCoordinator::setStatus(const SyncRecord& record, SyncStatus status,
                                const std::optional<QString>& error) {
    s_.db.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, status, {},
                       {}, error);
}

void SyncCoordinator::endBecauseOfStore(const std::exception& error) {
    s_.console.print(QStringLiteral("[Sync] DB yazma hatasi: ") + describe(error));
    const std::lock_guard lock(mutex_);
    summary_.storeFailure = describe(error);
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
