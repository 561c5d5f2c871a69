#include "google/GoogleErrors.h"

#include "google/GoogleFaults.h"

namespace quorvane {

namespace {

QString nameOf(GoogleError::Area area) {
    switch (area) {
    case GoogleError::Area::upload:
        return QStringLiteral("[Upload] ");
    case GoogleError::Area::batch:
        return QStringLiteral("[Batch] ");
    case GoogleError::Area::album:
        return QStringLiteral("[Album] ");
    }
    return {};
}

} // namespace

GoogleError GoogleError::http(Area area, const HttpResponse& response, bool intoAlbum) {
    return GoogleError(nameOf(area) + QStringLiteral("HTTP %1").arg(response.status),
                       faultIn(response, intoAlbum));
}

GoogleError GoogleError::invalidResponse(Area area) {
    return GoogleError(nameOf(area) + (area == Area::album ? QStringLiteral("Geçersiz API yanıtı")
                                                           : QStringLiteral("Gecersiz yanit")),
                       foreignAnswer());
}

GoogleError GoogleError::emptyToken() {
    return GoogleError(nameOf(Area::upload) + QStringLiteral("Bos uploadToken"), foreignAnswer());
}

GoogleError GoogleError::noToken() {
    return GoogleError(nameOf(Area::upload) + QStringLiteral("Gecersiz uploadToken"),
                       foreignAnswer());
}

GoogleError GoogleError::tooLarge(bool isMovie) {
    return GoogleError(
        nameOf(Area::upload) +
            (isMovie ? QStringLiteral("Video çok büyük: Google Fotoğraflar en fazla 20 GB'lık "
                                      "videoları kabul eder")
                     : QStringLiteral("Fotoğraf çok büyük: Google Fotoğraflar en fazla 200 "
                                      "MB'lık fotoğrafları kabul eder")),
        Fault{.code = FaultCode::tooLarge});
}

} // namespace quorvane
