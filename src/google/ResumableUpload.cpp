#include "google/ResumableUpload.h"

#include "foundation/MediaKinds.h"
#include "google/GoogleErrors.h"

#include <algorithm>

namespace quorvane {

namespace {

/// A piece that breaks off may be lost as a whole; and each one counts against the day's requests.
constexpr std::int64_t wantedPiece = std::int64_t(32) << 20;
constexpr std::int64_t largestGranularity = std::int64_t(1) << 30;

/// Refusals that may mean no more than that the upload does not stand where it was believed to.
bool isAboutTheUpload(int status) {
    return status == 400 || status == 404 || status == 409 || status == 410 || status == 412;
}

QByteArray stateOf(const HttpResponse& response) {
    return response.header("x-goog-upload-status");
}

/// The bearer token goes along: only to where the library is, or to Google's interfaces.
bool isTrusted(const QUrl& address, const QUrl& library) {
    return address.scheme() == library.scheme() &&
           (address.authority() == library.authority() ||
            (address.port() < 0 && address.host().endsWith(u".googleapis.com")));
}

} // namespace

HttpResponse ResumableUpload::send() {
    if (!takeUp())
        start();
    while (true) {
        const std::int64_t before = offset_;
        std::exception_ptr failure;
        try {
            HttpResponse response = sendPiece();
            if (response.status == 200 && offset_ == job_.size) {
                job_.memory.forget();
                return response;
            }
            if (response.status == 200)
                continue;
            failure =
                std::make_exception_ptr(GoogleError::http(GoogleError::Area::upload, response));
            if (!isAboutTheUpload(response.status))
                std::rethrow_exception(failure);
        } catch (const TransportError&) {
            failure = std::current_exception();
        }
        if (!takeUp())
            start();
        else if (offset_ <= before)
            std::rethrow_exception(failure);
    }
}

void ResumableUpload::start() {
    HttpRequest request;
    request.method = "POST";
    request.url = api_.at(QStringLiteral("/v1/uploads"));
    request.headers = {
        {"X-Goog-Upload-Command", "start"},
        {"X-Goog-Upload-Content-Type", uploadType(job_.source.file)},
        {"X-Goog-Upload-Protocol", "resumable"},
        {"X-Goog-Upload-Raw-Size", QByteArray::number(qint64(job_.size))},
        uploadNameHeader(job_.source.fileName),
    };
    const HttpResponse response = api_.send(std::move(request), job_.stop);
    if (response.status != 200 || startsLeft_-- == 0)
        throw GoogleError::http(GoogleError::Area::upload, response);
    address_ = QUrl(QString::fromLatin1(response.header("x-goog-upload-url")), QUrl::StrictMode);
    if (!isTrusted(address_, api_.at({})))
        throw GoogleError::invalidResponse(GoogleError::Area::upload);
    offset_ = 0;
    learnGranularity(response);
    job_.memory.remember(address_.toString(QUrl::FullyEncoded));
}

/// Asks how much Google has. False when there is no upload to go on with.
bool ResumableUpload::takeUp() {
    if (address_.isEmpty())
        address_ = QUrl(job_.memory.address().value_or(QString()));
    if (!isTrusted(address_, api_.at({})))
        return false;
    const HttpResponse response = command("query");
    const bool isKnown = response.status == 200;
    if (isKnown && stateOf(response) == "active") {
        bool isNumber = false;
        const qint64 received =
            response.header("x-goog-upload-size-received").toLongLong(&isNumber);
        if (!isNumber || received < 0 || received > job_.size)
            throw GoogleError::invalidResponse(GoogleError::Area::upload);
        offset_ = received;
        learnGranularity(response);
        return true;
    }
    if (isKnown && stateOf(response).isEmpty())
        throw GoogleError::invalidResponse(GoogleError::Area::upload);
    if (!isKnown && !isAboutTheUpload(response.status))
        throw GoogleError::http(GoogleError::Area::upload, response);
    address_.clear();
    job_.memory.forget();
    return false;
}

/// Of the next piece; all but the last are multiples of the granularity.
std::int64_t ResumableUpload::pieceSize() const {
    const std::int64_t piece = std::max(granularity_, wantedPiece / granularity_ * granularity_);
    return std::min(piece, job_.size - offset_);
}

/// Moves on when Google took the piece.
HttpResponse ResumableUpload::sendPiece() {
    const std::int64_t piece = pieceSize();
    const bool isLast = offset_ + piece == job_.size;
    HttpRequest request;
    request.isCreation = true; // sent again, it would begin where the upload is past
    request.headers = {{"X-Goog-Upload-Offset", QByteArray::number(qint64(offset_))}};
    request.bodyFile = job_.source.file;
    request.bodyRange = {offset_, piece};
    request.bodyRate = job_.source.rate;
    if (job_.progress)
        request.onProgress = [&](std::int64_t sent, std::int64_t) {
            job_.progress(offset_ + sent, job_.size);
        };
    HttpResponse response = command(isLast ? "upload, finalize" : "upload", std::move(request));
    if (response.status == 200) {
        if (stateOf(response) != (isLast ? "final" : "active"))
            throw GoogleError::invalidResponse(GoogleError::Area::upload);
        offset_ += piece;
    }
    return response;
}

HttpResponse ResumableUpload::command(const QByteArray& words, HttpRequest request) {
    request.method = "POST";
    request.url = address_;
    request.headers.emplace_back("X-Goog-Upload-Command", words);
    return api_.send(std::move(request), job_.stop);
}

void ResumableUpload::learnGranularity(const HttpResponse& response) {
    const qint64 bytes = response.header("x-goog-upload-chunk-granularity").toLongLong();
    if (bytes > 0 && bytes <= largestGranularity)
        granularity_ = bytes;
}

} // namespace quorvane
