#include "google/GoogleUploadTask.h"

#include "google/GoogleErrors.h"
#include "google/MimeTypes.h"

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

QString GoogleUploadTask::upload(const std::filesystem::path& file, const QString& fileName,
                                 const HttpRequest::Progress& progress, std::stop_token stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = api_.at(QStringLiteral("/v1/uploads"));
    request.headers = {
        {"Content-Type", "application/octet-stream"},
        {"X-Goog-Upload-Content-Type", mimeType(file)},
        {"X-Goog-Upload-Protocol", "raw"},
        {"X-Goog-Upload-File-Name", QUrl::toPercentEncoding(fileName, pathCharacters)},
    };
    request.bodyFile = file;
    request.onProgress = progress;
    const HttpResponse response = api_.send(std::move(request), stop);
    if (response.status != 200)
        throw UploadError::httpError(response);
    return uploadTokenFrom(response.body);
}

} // namespace quorvane
