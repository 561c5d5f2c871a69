#include "google/AlbumError.h"

namespace quorvane {

AlbumError::AlbumError(Case which, int status, QString description)
    : Error(std::move(description)), case_(which), status_(status) {}

AlbumError AlbumError::httpError(int status) {
    return {Case::httpError, status, QStringLiteral("[Album] HTTP %1").arg(status)};
}

AlbumError AlbumError::invalidResponse() {
    return {Case::invalidResponse, 0, QStringLiteral("[Album] Geçersiz API yanıtı")};
}

} // namespace quorvane
