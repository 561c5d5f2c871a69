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
    *course_.lock() = {.progress = std::move(progressHandler), .summary = {.total = total}};
    if (!s_.flags.isCancelled())
        drain();
    DeletionSummary deletion;
    if (!s_.flags.isCancelled() && !s_.attempts.ending())
        deletion = s_.deletion.performDeletion(deletionEnabled, s_.flags.stopToken());

    const auto course = course_.lock();
    course->progress = nullptr;
    course->summary.deletion = std::move(deletion);
    course->summary.cancelled = s_.flags.isCancelled();
    course->summary.unavailable = queue_.unavailable();
    return course->summary;
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
    return course_.lock()->summary.failure.has_value();
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
        course_.lock()->summary.passes = pass;
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
    {
        const auto course = course_.lock();
        course->queue = {std::make_move_iterator(records.begin()),
                         std::make_move_iterator(records.end())};
        course->isStopLogged = false;
    }
    std::vector<std::jthread> workers;
    workers.reserve(maxConcurrent);
    for (int i = 0; i < maxConcurrent; ++i)
        workers.emplace_back([this] { work(); });
}

/// One worker is one record in flight; records start in the fetched order.
void SyncCoordinator::work() {
    while (true) {
        try {
            auto permit = s_.attempts.enter(s_.flags.stopToken());
            if (!permit)
                return;
            const auto record = nextInPass();
            if (!record)
                return;
            processRecord(*record, std::move(*permit));
        } catch (const Cancelled&) {
            if (!isStopLogged())
                s_.log.log(QStringLiteral("[Sync] İptal bayrağı algılandı, batch sonlandırılıyor"));
            return;
        }
    }
}

/// None when the pass has nothing more to start.
std::optional<SyncRecord> SyncCoordinator::nextInPass() {
    const auto course = course_.lock();
    if (course->queue.empty() || course->summary.failure)
        return std::nullopt;
    SyncRecord record = std::move(course->queue.front());
    course->queue.pop_front();
    return record;
}

/// Also when there is nothing that the stop kept from being started.
bool SyncCoordinator::isStopLogged() {
    const auto course = course_.lock();
    return course->queue.empty() || std::exchange(course->isStopLogged, true);
}

/// Every error of a record ends here: in its status, or, when it is this computer's fault, in the
/// end of the run.
void SyncCoordinator::processRecord(const SyncRecord& record, Attempts::Permit given) noexcept {
    std::optional<Attempts::Permit> permit(std::move(given));
    try {
        try {
            bring(record, permit);
        } catch (const Cancelled&) {
            leaveStopped(record);
        } catch (const DBError&) {
            throw;
        } catch (const Error& error) {
            if (error.fault() && error.fault()->code == FaultCode::diskFull)
                course_.lock()->diskFull = error;
            else
                handleFailure(record, error, permit);
        } catch (const std::exception& error) {
            handleFailure(record, error, permit);
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

void SyncCoordinator::leaveStopped(const SyncRecord& record) {
    s_.console.print(QStringLiteral("[Sync] İptal bayrağı/cancellation algılandı, dosya FAILED "
                                    "yapılmıyor: ") +
                     record.assetLocalIdentifier);
    s_.life.requeued(record);
}

void SyncCoordinator::handleFailure(const SyncRecord& record, const std::exception& error,
                                    std::optional<Attempts::Permit>& permit) {
    const QString description = describe(error);
    if (s_.flags.isCancelled() || description.toLower().contains(u"cancel"))
        return leaveStopped(record);
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
    course_.lock()->queue.push_back(record); // the next attempt is another one's
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
    return std::exchange(course_.lock()->diskFull, std::nullopt);
}

int SyncCoordinator::completed() {
    return course_.lock()->summary.completed;
}

void SyncCoordinator::endBecauseOf(const Error& failure) {
    course_.lock()->summary.failure = failure;
}

/// Else the same bytes again in every pass.
void SyncCoordinator::endIfStoreRefused() {
    if (const auto refusal = s_.batchCoord.takeStoreRefusal())
        endBecauseOf(storeRefused(*refusal));
}

void SyncCoordinator::finishRecognised(int count) {
    {
        const auto course = course_.lock();
        course->summary.completed += count;
        course->summary.recognised += count;
    }
    reportProgress();
}

void SyncCoordinator::finishRecord(std::int64_t bytes) {
    {
        const auto course = course_.lock();
        ++course->summary.completed;
        course->summary.uploadedBytes += bytes;
    }
    reportProgress();
}

/// Counts what left the queue in another way (failed, held back), never running backwards.
void SyncCoordinator::catchUpProgress(int pending) {
    {
        const auto course = course_.lock();
        Summary& summary = course->summary;
        summary.completed = std::max(summary.completed, summary.total - pending);
    }
    reportProgress();
}

void SyncCoordinator::reportProgress() {
    const auto course = course_.lock();
    if (!course->progress)
        return;
    // Queued under the lock, so that the main thread sees the counts in their order.
    const Summary& summary = course->summary;
    onMainThread([handler = course->progress,
                  completed = std::min(summary.total, summary.completed),
                  total = summary.total] { handler(completed, total); });
}

} // namespace quorvane
