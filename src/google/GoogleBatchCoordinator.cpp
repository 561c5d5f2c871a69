#include "google/GoogleBatchCoordinator.h"

#include "foundation/MainThread.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace quorvane {

namespace {

const QString unansweredText =
    QStringLiteral("Google yanıtı bu medya için sonuç içermedi; yerel medya güvenlik için "
                   "saklandı.");
const QString noMediaItemText =
    QStringLiteral("Google yaniti mediaItem.id icermedi; yerel medya güvenlik için saklandı.");

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

QString compactText(const QJsonObject& object) {
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

bool tellsAlbumLimit(const QString& errorText) {
    return errorText.contains(u"ERR_PHOTO_PER_ALBUM_LIMIT") ||
           errorText.contains(u"maximum number of photos in an album");
}

/// What Google says about one entry.
struct ItemResult {
    QString mediaItemID; ///< of the item made; empty when the entry failed
    QString errorText;   ///< to tell the album limit by, and for the log
    QString lastError;   ///< for the record
};

/// A result that is missing, or that names another entry's upload token, is a failure: an original
/// must never be taken for saved by what was said about another one.
ItemResult readResult(const QJsonValue& value, const QString& token) {
    const QJsonObject result = value.toObject();
    const QString namedToken = result.value(QStringLiteral("uploadToken")).toString(token);
    if (!value.isObject() || namedToken != token)
        return {{}, unansweredText, unansweredText};
    const QJsonValue statusValue = result.value(QStringLiteral("status"));
    const QJsonObject status = statusValue.toObject();
    const qint64 code = status.value(QStringLiteral("code")).toInteger();
    const QString statusText = compactText(status);
    if (code != 0)
        return {{}, statusText, statusText};
    const QString id =
        result.value(QStringLiteral("mediaItem")).toObject().value(QStringLiteral("id")).toString();
    if (!id.isEmpty())
        return {id, {}, {}};
    return {{},
            statusValue.isObject() ? statusText : QStringLiteral("status.code = %1").arg(code),
            noMediaItemText};
}

QByteArray requestBody(const std::vector<GoogleBatchCoordinator::Entry>& batch,
                       const std::optional<QString>& albumID) {
    QJsonArray items;
    for (const auto& entry : batch) {
        QJsonObject item{{QStringLiteral("uploadToken"), entry.token}};
        if (!entry.fileName.isEmpty())
            item.insert(QStringLiteral("fileName"), entry.fileName);
        items.append(QJsonObject{{QStringLiteral("simpleMediaItem"), item}});
    }
    QJsonObject body{{QStringLiteral("newMediaItems"), items}};
    if (albumID)
        body.insert(QStringLiteral("albumId"), *albumID);
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

/// Turns every form of a cancellation into `Cancelled`.
void throwIfCancellation(const std::exception& error, const std::stop_token& stop) {
    if (stop.stop_requested() || dynamic_cast<const Cancelled*>(&error) != nullptr ||
        describe(error).contains(u"cancel", Qt::CaseInsensitive))
        throw Cancelled();
}

} // namespace

GoogleBatchCoordinator::GoogleBatchCoordinator(HttpClient& http, AccessTokenProvider& tokens,
                                               GoogleAlbumManager& albums,
                                               DatabaseManager& database, Preferences& preferences,
                                               Log& log, Console& console, Clock& clock,
                                               const GoogleEndpoints& endpoints)
    : http_(http),
      tokens_(tokens),
      albums_(albums),
      database_(database),
      preferences_(preferences),
      log_(log),
      console_(console),
      clock_(clock),
      batchEndpoint_(endpoints.library(QStringLiteral("/v1/mediaItems:batchCreate"))) {}

void GoogleBatchCoordinator::enqueue(const QString& token, const SyncRecord& record,
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

std::size_t GoogleBatchCoordinator::bufferedCount() const {
    const std::lock_guard lock(mutex_);
    return fullBatches_.size() + buffer_.size();
}

std::optional<QString> GoogleBatchCoordinator::takeStoreRefusal() {
    const std::lock_guard lock(mutex_);
    return std::exchange(storeRefusal_, std::nullopt);
}

/// Called with `mutex_` held.
void GoogleBatchCoordinator::startTimer(std::stop_token run) {
    flushTimer_ = {clock_.monotonic() + flushInterval, std::move(run), std::stop_source()};
    if (!timerThread_.joinable())
        timerThread_ = std::jthread([this](std::stop_token end) { runTimer(std::move(end)); });
    timerStarted_.notify_one();
}

void GoogleBatchCoordinator::runTimer(std::stop_token end) noexcept {
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
void GoogleBatchCoordinator::stopTimer() {
    if (const auto timer = std::exchange(flushTimer_, std::nullopt))
        timer->cancel.request_stop();
}

std::vector<GoogleBatchCoordinator::Entry> GoogleBatchCoordinator::takeBuffered(Part part) {
    const std::lock_guard lock(mutex_);
    std::vector<Entry> entries = std::exchange(fullBatches_, {});
    if (part == Part::everything) {
        std::ranges::move(buffer_, std::back_inserter(entries));
        buffer_.clear();
        stopTimer();
    }
    return entries;
}

void GoogleBatchCoordinator::flush(std::stop_token stop) {
    sendBuffered(Part::everything, stop);
}

void GoogleBatchCoordinator::sendBuffered(Part part, const std::stop_token& stop) {
    const std::lock_guard sending(sending_);
    try {
        sendAll(takeBuffered(part), stop);
    } catch (const Cancelled&) {
        log_.log(QStringLiteral("[Batch] İptal algılandı, batch öğeleri STAGED olarak korunuyor"));
    }
}

void GoogleBatchCoordinator::sendAll(std::vector<Entry> entries, const std::stop_token& stop) {
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
std::vector<GoogleBatchCoordinator::Entry>
GoogleBatchCoordinator::sendBatch(const std::vector<Entry>& batch, const std::stop_token& stop) {
    try {
        if (stop.stop_requested())
            throw Cancelled();
        return sendBatchWithRetryLogic(tokens_.validAccessToken(stop), batch, stop);
    } catch (const std::exception& error) {
        throwIfCancellation(error, stop);
        logFlushError(error);
        for (const Entry& entry : batch)
            markFailed(entry, describe(error));
        return {};
    }
}

std::vector<GoogleBatchCoordinator::Entry> GoogleBatchCoordinator::sendBatchWithRetryLogic(
    const QString& accessToken, const std::vector<Entry>& batch, const std::stop_token& stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = batchEndpoint_;
    request.headers = {{"Authorization", "Bearer " + accessToken.toUtf8()},
                       {"Content-Type", "application/json"}};
    request.body = requestBody(batch, albums_.targetAlbumID());
    const HttpResponse response = http_.send(request, stop);
    if (response.status != 200 && response.status != 207) // 207: some items failed
        throw BatchError::httpError(response.status);
    return processResultsReturningFailed(response.body, batch);
}

std::vector<GoogleBatchCoordinator::Entry>
GoogleBatchCoordinator::processResultsReturningFailed(const QByteArray& data,
                                                      const std::vector<Entry>& batch) {
    const QJsonValue answered =
        QJsonDocument::fromJson(data).object().value(QStringLiteral("newMediaItemResults"));
    if (!answered.isArray())
        throw BatchError::invalidResponse();
    const QJsonArray results = answered.toArray();
    if (results.size() > static_cast<qsizetype>(batch.size()))
        log_.log(QStringLiteral("[Batch] ⚠️ Google yanıtı %1 medya için %2 sonuç içerdi")
                     .arg(batch.size())
                     .arg(results.size()));
    std::vector<Entry> heldBack;
    for (std::size_t i = 0; i < batch.size(); ++i) {
        const Entry& entry = batch[i];
        const ItemResult result = readResult(results.at(static_cast<qsizetype>(i)), entry.token);
        if (!result.mediaItemID.isEmpty()) {
            markVerified(entry, result.mediaItemID);
        } else if (tellsAlbumLimit(result.errorText)) {
            heldBack.push_back(entry);
        } else {
            markFailed(entry, result.lastError);
            log_.log(QStringLiteral("[Batch] FAILED: ") + entry.fileName + QStringLiteral(" -> ") +
                     result.errorText);
        }
    }
    return heldBack;
}

/// True when the entries held back have a new album to go to.
bool GoogleBatchCoordinator::rollOver(const std::stop_token& stop) {
    console_.print(
        QStringLiteral("[Batch] Albüm limiti aşıldı, otomatik yeni albüm oluşturuluyor..."));
    try {
        albums_.createAndSelectNextPartAlbum(stop);
        return true;
    } catch (const std::exception& error) {
        throwIfCancellation(error, stop);
        logFlushError(error);
        return false;
    }
}

void GoogleBatchCoordinator::endAtLimit(bool stopsRun) {
    if (stopsRun) {
        console_.print(QStringLiteral("[Batch] Albüm limiti aşıldı, stopAtLimit devrede. "
                                      "Senkronizasyon durduruluyor."));
        onStopAtLimit();
    }
    console_.print(
        QStringLiteral("[Sync] 🛑 Albüm sınırı nedeniyle eşitleme otomatik durduruldu"));
    log_.log(QStringLiteral("Google Photos albüm sınırı (20.000 medya) doldu!"));
    onMainThread([publisher = googlePhotosAlbumLimitReached] { publisher.send({}); });
}

void GoogleBatchCoordinator::markVerified(const Entry& entry, const QString& remoteMediaID) {
    if (mark(entry, SyncStatus::verified, entry.token, remoteMediaID, std::nullopt))
        log_.log(QStringLiteral("[Batch] VERIFIED: ") + entry.fileName + QStringLiteral(" -> ") +
                 remoteMediaID);
}

void GoogleBatchCoordinator::markFailed(const Entry& entry, const QString& error) {
    mark(entry, SyncStatus::failed, std::nullopt, std::nullopt, error);
}

/// False when the store refused, which is logged and must not cost the other entries their result.
bool GoogleBatchCoordinator::mark(const Entry& entry, SyncStatus status,
                                  const std::optional<QString>& token,
                                  const std::optional<QString>& remoteMediaID,
                                  const std::optional<QString>& error) {
    const SyncRecord& record = entry.record;
    try {
        database_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID,
                               status, token, remoteMediaID, error);
        return true;
    } catch (const Error& refusal) {
        log_.log(QStringLiteral("[Batch] ❌ Kayıt güncellenemedi (") + rawValue(status) +
                 QStringLiteral("): ") + record.assetLocalIdentifier + QStringLiteral(" -> ") +
                 refusal.localizedDescription());
        const std::lock_guard lock(mutex_);
        storeRefusal_ = refusal.localizedDescription();
        return false;
    }
}

void GoogleBatchCoordinator::logFlushError(const std::exception& error) {
    log_.log(QStringLiteral("[Batch] Flush hatasi: ") + describe(error));
}

} // namespace quorvane
