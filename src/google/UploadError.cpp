#include "google/UploadError.h"

namespace quorvane {

UploadError::UploadError(Case which, int status, QString description)
    : Error(std::move(description)), case_(which), status_(status) {}

UploadError UploadError::httpError(int status) {
    return {Case::httpError, status, QStringLiteral("[Upload] HTTP %1").arg(status)};
}

UploadError UploadError::emptyToken() {
    return {Case::emptyToken, 0, QStringLiteral("[Upload] Bos uploadToken")};
}

UploadError UploadError::noToken() {
    return {Case::noToken, 0, QStringLiteral("[Upload] Gecersiz uploadToken")};
}

} // namespace quorvane
