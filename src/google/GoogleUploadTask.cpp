#include "google/GoogleUploadTask.h"

#include "foundation/FileVersion.h"
#include "foundation/MediaKinds.h"
#include "google/GoogleErrors.h"
#include "google/ResumableUpload.h"

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
    QString token = QString(decoder(body)).trimmed();
    if (decoder.hasError() || token.isEmpty())
        throw GoogleError::emptyToken();
    if (body.size() > largestToken || std::ranges::any_of(token, isNoTokenCharacter))
        throw GoogleError::noToken();
    return token;
}

void requireAcceptable(std::int64_t size, bool isMovie) {
    if (size > (isMovie ? GoogleUploadTask::largestMovie : GoogleUploadTask::largestPicture))
        throw GoogleError::tooLarge(isMovie);
}

} // namespace

std::pair<QByteArray, QByteArray> uploadNameHeader(const QString& fileName) {
    return {"X-Goog-Upload-File-Name", QUrl::toPercentEncoding(fileName, pathCharacters)};
}

QString GoogleUploadTask::upload(const UploadSource& source, UploadMemory& memory,
                                 const HttpRequest::Progress& progress, std::stop_token stop) {
    const std::int64_t size = fileVersion(source.file).value_or(FileVersion()).size;
    requireAcceptable(size, source.isMovie);
    const HttpResponse response =
        size < resumableFrom ? sendAtOnce(source, progress, stop)
                             : ResumableUpload(api_, {source, size, memory, progress, stop}).send();
    if (response.status != 200)
        throw GoogleError::http(GoogleError::Area::upload, response);
    return uploadTokenFrom(response.body);
}

HttpResponse GoogleUploadTask::sendAtOnce(const UploadSource& source,
                                          const HttpRequest::Progress& progress,
                                          const std::stop_token& stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = api_.at(QStringLiteral("/v1/uploads"));
    request.headers = {
        {"Content-Type", "application/octet-stream"},
        {"X-Goog-Upload-Content-Type", uploadType(source.file)},
        {"X-Goog-Upload-Protocol", "raw"},
        uploadNameHeader(source.fileName),
    };
    request.bodyFile = source.file;
    request.onProgress = progress;
    request.bodyRate = source.rate;
    return api_.send(std::move(request), stop);
}

} // namespace quorvane
