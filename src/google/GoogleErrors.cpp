#include "google/GoogleErrors.h"

#include "google/GoogleFaults.h"

namespace quorvane {

UploadError UploadError::httpError(const HttpResponse& response) {
    return UploadError(QStringLiteral("[Upload] HTTP %1").arg(response.status), faultIn(response));
}

UploadError UploadError::emptyToken() {
    return UploadError(QStringLiteral("[Upload] Bos uploadToken"), foreignAnswer());
}

UploadError UploadError::noToken() {
    return UploadError(QStringLiteral("[Upload] Gecersiz uploadToken"), foreignAnswer());
}

UploadError UploadError::invalidResponse() {
    return UploadError(QStringLiteral("[Upload] Gecersiz yanit"), foreignAnswer());
}

UploadError UploadError::tooLarge(bool isMovie) {
    return UploadError(isMovie ? QStringLiteral("[Upload] Video çok büyük: Google Fotoğraflar en "
                                                "fazla 20 GB'lık videoları kabul eder")
                               : QStringLiteral("[Upload] Fotoğraf çok büyük: Google Fotoğraflar "
                                                "en fazla 200 MB'lık fotoğrafları kabul eder"),
                       Fault{.code = FaultCode::tooLarge});
}

BatchError BatchError::httpError(const HttpResponse& response,
                                 const std::optional<QString>& albumID) {
    return BatchError(QStringLiteral("[Batch] HTTP %1").arg(response.status),
                      faultIn(response, albumID.has_value()));
}

BatchError BatchError::invalidResponse() {
    return BatchError(QStringLiteral("[Batch] Gecersiz yanit"), foreignAnswer());
}

AlbumError AlbumError::httpError(const HttpResponse& response) {
    return AlbumError(QStringLiteral("[Album] HTTP %1").arg(response.status), faultIn(response));
}

AlbumError AlbumError::additionRefused(const HttpResponse& response) {
    return AlbumError(QStringLiteral("[Album] HTTP %1").arg(response.status),
                      faultIn(response, response.status == 404));
}

AlbumError AlbumError::invalidResponse() {
    return AlbumError(QStringLiteral("[Album] Geçersiz API yanıtı"), foreignAnswer());
}

} // namespace quorvane
