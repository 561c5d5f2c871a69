#include "sync/BatchCoordinator.h"

#include "foundation/MainThread.h"
#include "google/OAuthError.h"
#include "sync/Backoff.h"
#include "sync/EitherStop.h"

#include <algorithm>

namespace quorvane {

namespace {

/// Whatever fails during a stop fails by it, and so does what another program calls cancelled.
void throwIfCancellation(const std::exception& error, const std::stop_token& stop) {
    if (stop.stop_requested() || describe(error).contains(u"cancel", Qt::CaseInsensitive))
        throw Cancelled();
}

bool isItems(const std::optional<Fault>& fault) {
    return !fault || kindOf(fault->code) == FaultKind::item;
}

} // namespace

void BatchCoordinator::enqueue(NewItem item, const SyncRecord& record, std::stop_token stop) {
    auto state = state_.lock();
    if (!state.wait(changed_, stop, [&] { return state->buffer.size() < batchSize; }))
        throw Cancelled();
    if (!sender_.joinable()) {
        timer_ = std::jthread([this](const std::stop_token& end) { runTimer(end); });
        sender_ = std::jthread([this](const std::stop_token& end) { runSender(end); });
    }
    if (state->buffer.empty()) {
        state->deadline = s_.clock.monotonic() + flushInterval;
        state->deadlineStop = std::stop_source();
    }
    state->buffer.push_back({std::move(item), record});
    state->unsettled.insert(record.assetLocalIdentifier);
    state->run = std::move(stop);
    if (state->buffer.size() == 1 ||
        state->buffer.size() == batchSize) // what the timer and the sender wait for
        changed_.notify_all();
}

void BatchCoordinator::handOver() {
    const auto state = state_.lock();
    state->isHandedOver = !state->buffer.empty();
    changed_.notify_all();
}

void BatchCoordinator::flush() {
    auto state = state_.lock();
    state->isHandedOver = !state->buffer.empty();
    changed_.notify_all();
    state.wait(changed_, {}, [&] { return state->buffer.empty() && !state->isSending; });
}

void BatchCoordinator::lookAtUnsettled(const std::function<void(const std::set<QString>&)>& look) {
    const std::lock_guard settling(settling_);
    const std::set<QString> unsettled = state_.lock()->unsettled;
    look(unsettled);
}

std::optional<QString> BatchCoordinator::takeStoreRefusal() {
    return std::exchange(state_.lock()->storeRefusal, std::nullopt);
}

int BatchCoordinator::takeAlreadyExisting() {
    return std::exchange(state_.lock()->alreadyExisting, 0);
}

void BatchCoordinator::runTimer(const std::stop_token& end) noexcept {
    while (!end.stop_requested()) {
        auto state = state_.lock();
        if (!state.wait(changed_, end, [&] { return state->deadline.has_value(); }))
            return;
        const auto wait =
            std::chrono::ceil<std::chrono::milliseconds>(*state->deadline - s_.clock.monotonic());
        const EitherStop stop(end, state->deadlineStop.get_token());
        bool isDue = false;
        state.without([&] { isDue = s_.clock.sleep(wait, stop.token()); });
        if (!isDue || stop.token().stop_requested())
            continue;
        state->deadline.reset();
        state->isHandedOver = !state->buffer.empty();
        changed_.notify_all();
    }
}

void BatchCoordinator::runSender(const std::stop_token& end) noexcept {
    auto state = state_.lock();
    const auto isDue = [&] { return state->isHandedOver || state->buffer.size() >= batchSize; };
    while (state.wait(changed_, end, isDue)) {
        Batch batch = std::exchange(state->buffer, {});
        state->isHandedOver = false;
        state->isSending = true;
        state->deadline.reset();
        std::stop_source taken = state->deadlineStop;
        const EitherStop stop(end, state->run);
        changed_.notify_all();
        state.without([&] {
            taken.request_stop();
            send(std::move(batch), stop.token());
        });
        state->isSending = false;
        changed_.notify_all();
    }
}

void BatchCoordinator::send(Batch batch, const std::stop_token& stop) {
    const Batch all = batch;
    try {
        bool hasRolledOver = false;
        for (int repeats = 0; !batch.empty(); ++repeats) {
            Remainder rest = sendOnce(batch, repeats, stop);
            batch = std::move(rest.again);
            if (rest.wait.count() > 0 && !s_.attempts.sleep(rest.wait, stop))
                throw Cancelled();
            if (rest.heldBack.empty())
                continue;
            const bool rollsOver = s_.preferences.boolean(preferenceKeys::autoRolloverOnLimit);
            const auto isNew = rollsOver && !hasRolledOver ? rollOver(stop) : std::nullopt;
            if (!isNew) {
                endAtLimit(rollsOver || s_.preferences.boolean(preferenceKeys::stopAtLimit));
                break;
            }
            hasRolledOver = *isNew;
            batch.insert(batch.begin(), rest.heldBack.begin(), rest.heldBack.end());
        }
    } catch (const Cancelled&) {
        s_.log.log(
            QStringLiteral("[Batch] İptal algılandı, batch öğeleri STAGED olarak korunuyor"));
    }
    leave(all);
}

BatchCoordinator::Remainder BatchCoordinator::sendOnce(const Batch& batch, int repeats,
                                                       const std::stop_token& stop) {
    std::vector<NewItem> items;
    for (const Entry& entry : batch)
        items.push_back(entry.item);
    auto permit = s_.attempts.enter(stop);
    if (!permit)
        return {};
    Remainder rest;
    try {
        const auto results = s_.destination.create(items, stop);
        rest = sort(batch, results, std::move(*permit));
    } catch (const std::exception& error) {
        throwIfCancellation(error, stop);
        rest = failed(batch, error, std::move(*permit));
    }
    if (!rest.again.empty())
        rest.wait = std::max<std::chrono::milliseconds>(rest.wait, backoffAfter(repeats + 1));
    return rest;
}

/// The request as a whole was not carried out.
BatchCoordinator::Remainder
BatchCoordinator::failed(const Batch& batch, const std::exception& error, Attempts::Permit permit) {
    logFlushError(error);
    const auto fault = faultOf(error);
    if (fault && fault->code == FaultCode::albumFull) {
        permit.passed();
        return {.heldBack = batch};
    }
    const World::Verdict verdict = permit.failed(fault);
    // Refused twice although the sign-in renewed the session in between.
    const bool isRefusedTwice = fault && fault->code == FaultCode::sessionEnded &&
                                dynamic_cast<const OAuthError*>(&error) == nullptr;
    if (isItems(fault) || isRefusedTwice) {
        for (const Entry& entry : batch)
            markFailed(entry, describe(error), fault);
        return {};
    }
    if (s_.attempts.ending())
        return {};
    return {.again = batch, .wait = verdict.wait};
}

/// The request was answered, item by item. What the world did to some of them where others passed
/// is theirs.
BatchCoordinator::Remainder BatchCoordinator::sort(const Batch& batch,
                                                   const std::vector<NewItemResult>& results,
                                                   Attempts::Permit permit) {
    using Outcome = NewItemResult::Outcome;
    const auto isWorlds = [](const NewItemResult& result) {
        return result.outcome == Outcome::refused && !isItems(result.fault);
    };
    const auto worlds = std::ranges::find_if(results, isWorlds);
    const bool hasPassed = std::ranges::any_of(results, [](const NewItemResult& result) {
        return result.outcome == Outcome::created || result.outcome == Outcome::alreadyExists;
    });
    const bool isItself =
        worlds != results.end() && (!hasPassed || kindOf(worlds->fault->code) != FaultKind::moment);
    Remainder rest;
    if (isItself)
        rest.wait = permit.failed(worlds->fault).wait;
    else
        permit.passed();
    std::vector<Arrival> arrivals;
    for (std::size_t i = 0; i < batch.size(); ++i) {
        const NewItemResult& result = results.at(i);
        if (result.outcome == Outcome::heldBack)
            rest.heldBack.push_back(batch[i]);
        else if (isItself && isWorlds(result))
            rest.again.push_back(batch[i]);
        else if (result.outcome == Outcome::refused)
            settleRefused(batch[i], result);
        else
            arrivals.push_back({batch[i], result});
    }
    settleArrivals(arrivals);
    if (s_.attempts.ending())
        rest.again.clear();
    return rest;
}

/// Whether the album that the entries held back go to now was made for them; none when there is no
/// such album.
std::optional<bool> BatchCoordinator::rollOver(const std::stop_token& stop) {
    s_.console.print(
        QStringLiteral("[Batch] Albüm limiti aşıldı, otomatik yeni albüm oluşturuluyor..."));
    while (auto permit = s_.attempts.enter(stop)) {
        try {
            const bool isNew = s_.destination.makeNextAlbum(stop);
            permit->passed();
            return isNew;
        } catch (const std::exception& error) {
            throwIfCancellation(error, stop);
            logFlushError(error);
            const auto fault = faultOf(error);
            const World::Verdict verdict = permit->failed(fault);
            if (isItems(fault))
                return std::nullopt;
            if (!s_.attempts.sleep(verdict.wait, stop))
                throw Cancelled();
        }
    }
    throw Cancelled(); // the run is over for another reason
}

void BatchCoordinator::endAtLimit(bool stopsRun) {
    if (stopsRun)
        s_.console.print(QStringLiteral("[Batch] Albüm limiti aşıldı, stopAtLimit devrede. "
                                        "Senkronizasyon durduruluyor."));
    onAlbumFull();
    s_.console.notice(
        QStringLiteral("[Sync] 🛑 Albüm sınırı nedeniyle eşitleme otomatik durduruldu"));
    s_.log.log(QStringLiteral("Google Photos albüm sınırı (20.000 medya) doldu!"));
    onMainThread([publisher = googlePhotosAlbumLimitReached] { publisher.send({}); });
}

void BatchCoordinator::settleRefused(const Entry& entry, const NewItemResult& result) {
    if (result.fault && result.fault->code == FaultCode::tokenRefused && mayBeSentAgain(entry))
        return; // stays STAGED
    markFailed(entry, result.reason, result.fault);
    s_.log.logAbout(entry.record.assetLocalIdentifier, QStringLiteral("[Batch] FAILED: ") +
                                                           entry.item.fileName +
                                                           QStringLiteral(" -> ") + result.detail);
}

void BatchCoordinator::settleArrivals(const std::vector<Arrival>& arrivals) {
    if (arrivals.empty())
        return;
    const std::vector<bool> isMarked = markVerified(arrivals);
    for (std::size_t i = 0; i < arrivals.size(); ++i) {
        if (!isMarked[i])
            continue;
        const auto& [entry, result] = arrivals[i];
        const bool isNew = result.outcome == NewItemResult::Outcome::created;
        s_.log.logAbout(entry.record.assetLocalIdentifier,
                        QStringLiteral("[Batch] VERIFIED: ") + entry.item.fileName +
                            QStringLiteral(" -> ") +
                            (isNew ? result.remoteID : QStringLiteral("hedefte zaten vardı")));
        onCreated(entry.record);
        state_.lock()->alreadyExisting += isNew ? 0 : 1;
    }
}

/// Once: the bytes are gone at the destination, but not for a second time.
bool BatchCoordinator::mayBeSentAgain(const Entry& entry) {
    try {
        s_.tokens.forget(entry.record);
    } catch (const DBError& refusal) {
        state_.lock()->storeRefusal = refusal.localizedDescription();
    }
    const auto state = state_.lock();
    if (state->sentAgain.erase(entry.record.assetLocalIdentifier) > 0)
        return false;
    state->sentAgain.insert(entry.record.assetLocalIdentifier);
    return true;
}

/// In one write, which costs the store hardly more than one record's; one by one where it refuses
/// that. Without a remote id a record is never offered for deletion: its item cannot be asked for.
std::vector<bool> BatchCoordinator::markVerified(const std::vector<Arrival>& arrivals) {
    const auto created = [this](const Arrival& arrival) {
        return s_.life.created(arrival.entry.record, arrival.entry.item.uploadToken,
                               arrival.result.remoteID, arrival.result.filedUnder);
    };
    const std::lock_guard settling(settling_);
    std::vector<bool> atOnce;
    try {
        s_.life.together(
            [&] { std::ranges::transform(arrivals, std::back_inserter(atOnce), created); });
    } catch (const Error&) {
        atOnce.clear();
    }
    std::vector<bool> isMarked;
    for (std::size_t i = 0; i < arrivals.size(); ++i)
        isMarked.push_back(mark(arrivals[i].entry, SyncStatus::verified,
                                [&] { return atOnce.empty() ? created(arrivals[i]) : atOnce[i]; }));
    return isMarked;
}

void BatchCoordinator::markFailed(const Entry& entry, const QString& reason,
                                  const std::optional<Fault>& fault) {
    const std::lock_guard settling(settling_);
    mark(entry, SyncStatus::failed, [&] { return s_.life.refused(entry.record, reason, fault); });
}

/// False when the record stayed what it is: the store refused, which must not cost the other
/// entries their result, or the record moved on while its batch was under way. `settling_` is held.
bool BatchCoordinator::mark(const Entry& entry, SyncStatus status,
                            const std::function<bool()>& transition) {
    const QString outcome =
        rawValue(status) + QStringLiteral("): ") + entry.record.assetLocalIdentifier;
    try {
        if (transition()) {
            state_.lock()->unsettled.erase(entry.record.assetLocalIdentifier);
            return true;
        }
        s_.log.log(
            QStringLiteral("[Batch] ⚠️ Kayıt bu arada değişti, sonuç yazılmadı (") +
            outcome);
    } catch (const Error& refusal) {
        s_.log.log(QStringLiteral("[Batch] ❌ Kayıt güncellenemedi (") + outcome +
                   QStringLiteral(" -> ") + refusal.localizedDescription());
        state_.lock()->storeRefusal = refusal.localizedDescription();
    }
    return false;
}

/// Whatever of the batch has no result by now stays STAGED.
void BatchCoordinator::leave(const Batch& batch) {
    const auto state = state_.lock();
    for (const Entry& entry : batch)
        state->unsettled.erase(entry.record.assetLocalIdentifier);
}

void BatchCoordinator::logFlushError(const std::exception& error) {
    s_.log.log(QStringLiteral("[Batch] Flush hatasi: ") + describe(error));
}

} // namespace quorvane
