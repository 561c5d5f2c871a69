#include "sync/SyncCoordinator.h"

#include "foundation/MainThread.h"

#include <algorithm>
#include <thread>

namespace quorvane {

namespace {

Error storeRefused(const QString& why) {
    return Error(QStringLiteral("durum veritabanına yazılamadı (%1)").arg(why),
                 Fault{.code = FaultCode::storeUnavailable});
}

} // namespace

SyncCoordinator::SyncCoordinator(Services services, StageAhead::Limits stagingLimits)
    : s_(services), stagingLimits_(stagingLimits), queue_(s_.db, s_.batchCoord, s_.recognition) {}

SyncCoordinator::Summary SyncCoordinator::drainPendingQueue(bool deletionEnabled,
                                                            ProgressHandler progressHandler) {
    queue_.begin();
    const int total = pendingOrZero();
    {
        const std::lock_guard lock(mutex_);
        summary_ = Summary();
        summary_.total = total;
        currentProgressHandler_ = std::move(progressHandler);
    }
    if (!s_.flags.isCancelled())
        drain();
    DeletionSummary deletion;
    if (!s_.flags.isCancelled() && !s_.attempts.ending())
        deletion = s_.deletion.performDeletion(deletionEnabled, s_.flags.stopToken());

    const std::lock_guard lock(mutex_);
    summary_.deletion = std::move(deletion);
    currentProgressHandler_ = nullptr;
    summary_.cancelled = s_.flags.isCancelled();
    summary_.unavailable = queue_.unavailable();
    return summary_;
}

void SyncCoordinator::drain() {
    forgetExpiredUploads();
    stageAhead_.emplace(s_.staging, s_.flags.stopToken(), stagingLimits_);
    transfer_.emplace(RecordTransfer::Services{s_.db, s_.life, s_.tokens, s_.sessions, s_.staging,
                                               s_.metadata, s_.destination, s_.tracker,
                                               s_.preferences, s_.console, s_.clock},
                      *stageAhead_);
    runPasses();
    transfer_.reset();
    stageAhead_.reset(); // nothing is staged any more while originals are deleted
    s_.batchCoord.flush();
    endIfStoreRefused();
}

/// Stopped, out of order here, or given up on.
bool SyncCoordinator::isOver() {
    if (s_.flags.isCancelled() || s_.attempts.ending())
        return true;
    const std::lock_guard lock(mutex_);
    return summary_.failure.has_value();
}

int SyncCoordinator::pendingOrZero() {
    try {
        return queue_.count();
    } catch (const DBError&) {
        return 0;
    }
}

/// What is left for another pass. The last batches are awaited before it is believed that nothing
/// is: some of theirs may come back.
int SyncCoordinator::pendingAfterPass() {
    const int pending = pendingOrZero();
    catchUpProgress(pending);
    if (pending > 0)
        return pending;
    s_.batchCoord.flush();
    return pendingOrZero();
}

void SyncCoordinator::forgetExpiredUploads() {
    try {
        s_.tokens.forgetExpired();
        s_.sessions.forgetExpired();
    } catch (const DBError&) { // NOLINT(bugprone-empty-catch)
        // They serve nobody; a store that refuses is met again at the first record.
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
        pending = pendingAfterPass();
        endIfStoreRefused();
        if (onPassEnded)
            onPassEnded();
        {
            const std::lock_guard lock(mutex_);
            summary_.passes = pass;
        }
        if (isOver())
            break;
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
    }
    if (s_.flags.isCancelled())
        s_.log.log(QStringLiteral("[Sync] İptal bayrağı algılandı, kuyruk geçişi sonlandırılıyor"));
}

/// One pass. False when there was nothing left that this run has not found unavailable.
bool SyncCoordinator::runSyncLoop() {
    std::vector<SyncRecord> records;
    try {
        records = queue_.next(
            2 * passSize, [this](int count) { finishRecognised(count); }, s_.flags.stopToken());
    } catch (const DBError& error) {
        s_.console.notice(QStringLiteral("[Sync] DB okuma hatasi: ") +
                          error.localizedDescription());
        endBecauseOf(storeRefused(error.localizedDescription()));
        return false;
    } catch (const Error& error) {
        endBecauseOf(error);
        return false;
    } catch (const Cancelled&) {
        return false;
    }
    if (records.empty()) {
        // The run's end, which follows at once, also does what safe deletion there is to do.
        s_.console.print(QStringLiteral("[Sync] Bekleyen kayit yok"));
        return false;
    }
    stageAhead_->expect(records); // this pass, and the next one for the staging to go on with
    if (records.size() > passSize)
        records.resize(passSize);
    s_.console.print(QStringLiteral("[Sync] %1 kayit isleniyor").arg(records.size()));
    const int completedBefore = completed();
    processAll(std::move(records));
    s_.batchCoord.handOver();
    // What was sent in this pass makes room for the next one; a smaller file found its own.
    if (const auto full = takeDiskFull(); full && completed() == completedBefore)
        endBecauseOf(*full);
    return true;
}

void SyncCoordinator::processAll(std::vector<SyncRecord> records) {
    Pass pass{{std::make_move_iterator(records.begin()), std::make_move_iterator(records.end())}};
    std::vector<std::jthread> workers;
    for (int i = 0; i < maxConcurrent; ++i)
        workers.emplace_back([this, &pass] { work(pass); });
}

/// One worker is one record in flight; records start in the fetched order.
void SyncCoordinator::work(Pass& pass) {
    while (true) {
        try {
            auto permit = s_.attempts.enter(s_.flags.stopToken());
            if (!permit)
                return;
            const auto record = nextIn(pass);
            if (!record)
                return;
            processRecord(pass, *record, std::move(*permit));
        } catch (const Cancelled&) {
            if (!isStopLogged(pass))
                s_.log.log(QStringLiteral("[Sync] İptal bayrağı algılandı, batch sonlandırılıyor"));
            return;
        }
    }
}

/// None when the pass has nothing more to start.
std::optional<SyncRecord> SyncCoordinator::nextIn(Pass& pass) {
    const std::lock_guard lock(mutex_);
    if (pass.queue.empty() || summary_.failure)
        return std::nullopt;
    SyncRecord record = std::move(pass.queue.front());
    pass.queue.pop_front();
    return record;
}

/// Also when there is nothing that the stop kept from being started.
bool SyncCoordinator::isStopLogged(Pass& pass) {
    const std::lock_guard lock(mutex_);
    return pass.queue.empty() || std::exchange(pass.stopLogged, true);
}

/// Every error of a record ends here: in its status, or, when it is this computer's fault, in the
/// end of the run.
void SyncCoordinator::processRecord(Pass& pass, const SyncRecord& record,
                                    Attempts::Permit given) noexcept {
    std::optional<Attempts::Permit> permit(std::move(given));
    try {
        try {
            bring(record, permit);
        } catch (const DBError&) {
            throw;
        } catch (const Error& error) {
            if (error.fault() && error.fault()->code == FaultCode::diskFull) {
                const std::lock_guard lock(mutex_);
                diskFull_ = error;
            } else {
                handleFailure(pass, record, error, permit);
            }
        } catch (const std::exception& error) {
            handleFailure(pass, record, error, permit);
        }
    } catch (const std::exception& error) {
        s_.console.notice(QStringLiteral("[Sync] DB yazma hatasi: ") + describe(error));
        endBecauseOf(storeRefused(describe(error)));
    }
}

void SyncCoordinator::bring(const SyncRecord& record, std::optional<Attempts::Permit>& permit) {
    const std::stop_token stop = s_.flags.stopToken();
    const RecordTransfer::Result result = transfer_->bring(record, stop);
    if (result.sentBytes > 0)
        permit->passed();
    permit.reset(); // the batches, which may have to be waited for, need one of their own
    if (result.outcome == RecordTransfer::Outcome::unavailable) {
        queue_.setUnavailable(record);
    } else if (result.outcome == RecordTransfer::Outcome::sent) {
        s_.batchCoord.enqueue({result.token, result.fileName, result.caption}, record, stop);
        finishRecord(result.sentBytes);
    }
}

void SyncCoordinator::handleFailure(Pass& pass, const SyncRecord& record,
                                    const std::exception& error,
                                    std::optional<Attempts::Permit>& permit) {
    const QString description = describe(error);
    if (s_.flags.isCancelled() || dynamic_cast<const Cancelled*>(&error) != nullptr ||
        description.toLower().contains(u"cancel")) {
        s_.console.print(QStringLiteral("[Sync] İptal bayrağı/cancellation algılandı, dosya FAILED "
                                        "yapılmıyor: ") +
                         record.assetLocalIdentifier);
        s_.life.requeued(record);
        return;
    }
    const World::Verdict verdict = judge(record, error, permit);
    if (verdict.isItsOwn) {
        s_.console.notice(
            QStringLiteral("[Sync] Hata (%1x), %2s bekleniyor: %3")
                .arg(verdict.errors)
                .arg(QString::number(static_cast<double>(verdict.wait.count()), 'f', 1),
                     description),
            record.assetLocalIdentifier);
        s_.clock.sleep(verdict.wait, s_.flags.stopToken());
        return;
    }
    s_.log.logAbout(record.assetLocalIdentifier,
                    QStringLiteral("[Sync] ⏸ Dosya sırada kaldı: ") + description);
    stageAhead_->expectAgain(record);
    const std::lock_guard lock(mutex_);
    pass.queue.push_back(record); // the next attempt is another one's
}

/// Whose fault it was, with what follows for this record.
World::Verdict SyncCoordinator::judge(const SyncRecord& record, const std::exception& error,
                                      std::optional<Attempts::Permit>& permit) {
    const auto fault = faultOf(error);
    const World::Verdict verdict = permit->failed(fault);
    if (!verdict.isItsOwn)
        return verdict;
    const QString description = describe(error);
    if (!s_.life.refused(record, description, fault))
        s_.life.stageFailed(record, description, fault);
    if (fault && kindOf(fault->code) == FaultKind::moment)
        s_.attempts.suspect(verdict.era, [this, record] { relieve(record); });
    return verdict;
}

/// What failed in a row before an outage failed by it.
void SyncCoordinator::relieve(const SyncRecord& record) noexcept {
    try {
        s_.life.relieved(record);
    } catch (const std::exception& error) {
        endBecauseOf(storeRefused(describe(error)));
    }
}

std::optional<Error> SyncCoordinator::takeDiskFull() {
    const std::lock_guard lock(mutex_);
    return std::exchange(diskFull_, std::nullopt);
}

int SyncCoordinator::completed() {
    const std::lock_guard lock(mutex_);
    return summary_.completed;
}

void SyncCoordinator::endBecauseOf(const Error& failure) {
    const std::lock_guard lock(mutex_);
    summary_.failure = failure;
}

/// Else the same bytes again in every pass.
void SyncCoordinator::endIfStoreRefused() {
    if (const auto refusal = s_.batchCoord.takeStoreRefusal())
        endBecauseOf(storeRefused(*refusal));
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
