#include "google/BatchError.h"

namespace quorvane {

BatchError::BatchError(Case which, int status, QString description)
    : Error(std::move(description)), case_(which), status_(status) {}

BatchError BatchError::httpError(int status) {
    return {Case::httpError, status, QStringLiteral("[Batch] HTTP %1").arg(status)};
}

BatchError BatchError::invalidResponse() {
    return {Case::invalidResponse, 0, QStringLiteral("[Batch] Gecersiz yanit")};
}

} // namespace quorvane
