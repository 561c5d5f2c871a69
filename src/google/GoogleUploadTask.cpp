#include "google/GoogleUploadTask.h"

#include "google/MimeTypes.h"
#include "google/UploadError.h"

#include <QStringDecoder>

namespace quorvane {

namespace {

/// What a URL path may hold unencoded besides letters, digits and "-._~" (RFC 3986, `pchar` and
/// "/").
constexpr const char* pathCharacters = "!$&'()*+,;=:@/";

QString uploadTokenFrom(const QByteArray& body) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString token = QString(decoder(body)).trimmed();
    if (decoder.hasError() || token.isEmpty())
        throw UploadError::emptyToken();
    return token;
}

} // namespace

GoogleUploadTask::GoogleUploadTask(HttpClient& http, AccessTokenProvider& tokens,
                                   TransferActivityTracker& tracker,
                                   const GoogleEndpoints& endpoints)
    : http_(http),
      tokens_(tokens),
      tracker_(tracker),
      uploadEndpoint_(endpoints.library(QStringLiteral("/v1/uploads"))) {}

QString GoogleUploadTask::upload(const SyncRecord& record, const std::filesystem::path& file,
                                 const QString& fileName, std::stop_token stop) {
    const QString token = tokens_.validAccessToken(stop);
    HttpRequest request;
    request.method = "POST";
    request.url = uploadEndpoint_;
    request.headers = {
        {"Authorization", "Bearer " + token.toUtf8()},
        {"Content-Type", "application/octet-stream"},
        {"X-Goog-Upload-Content-Type", mimeType(file)},
        {"X-Goog-Upload-Protocol", "raw"},
        {"X-Goog-Upload-File-Name", QUrl::toPercentEncoding(fileName, pathCharacters)},
    };
    request.bodyFile = file;
    request.onProgress = [&](std::int64_t sent, std::int64_t total) {
        tracker_.updateProgress(record.assetLocalIdentifier, sent, total);
    };
    const HttpResponse response = http_.send(request, stop);
    if (response.status != 200)
        throw UploadError::httpError(response.status);
    return uploadTokenFrom(response.body);
}

} // namespace quorvane
