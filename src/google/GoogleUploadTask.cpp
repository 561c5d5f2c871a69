#include "google/GoogleUploadTask.h"

#include "google/MimeTypes.h"
#include "google/UploadError.h"

#include <QStringDecoder>

#include <algorithm>

namespace quorvane {

namespace {

/// What a URL path may hold unencoded besides letters, digits and "-._~" (RFC 3986, `pchar` and
/// "/"), without the ";" that separates a segment's parameters.
constexpr const char* pathCharacters = "!$&'()*+,=:@/";

constexpr qsizetype largestToken = 8 << 10; // bytes

/// White space and the like, or the page of somebody between us and Google.
bool isNoTokenCharacter(QChar character) {
    return character.isSpace() || !character.isPrint() || character == u'<';
}

QString uploadTokenFrom(const QByteArray& body) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString token = QString(decoder(body)).trimmed();
    if (decoder.hasError() || token.isEmpty())
        throw UploadError::emptyToken();
    if (body.size() > largestToken || std::ranges::any_of(token, isNoTokenCharacter))
        throw UploadError::noToken();
    return token;
}

} // namespace

GoogleUploadTask::GoogleUploadTask(HttpClient& http, AccessTokenProvider& tokens,
                                   const GoogleEndpoints& endpoints)
    : http_(http),
      tokens_(tokens),
      uploadEndpoint_(endpoints.library(QStringLiteral("/v1/uploads"))) {}

QString GoogleUploadTask::upload(const std::filesystem::path& file, const QString& fileName,
                                 const HttpRequest::Progress& progress, std::stop_token stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = uploadEndpoint_;
    request.headers = {
        {"Authorization", "Bearer " + tokens_.validAccessToken(stop).toUtf8()},
        {"Content-Type", "application/octet-stream"},
        {"X-Goog-Upload-Content-Type", mimeType(file)},
        {"X-Goog-Upload-Protocol", "raw"},
        {"X-Goog-Upload-File-Name", QUrl::toPercentEncoding(fileName, pathCharacters)},
    };
    request.bodyFile = file;
    request.onProgress = progress;
    const HttpResponse response = http_.send(request, stop);
    if (response.status != 200)
        throw UploadError::httpError(response.status);
    return uploadTokenFrom(response.body);
}

} // namespace quorvane
