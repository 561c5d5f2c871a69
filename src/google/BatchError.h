#pragma once

#include "foundation/Error.h"

namespace quorvane {

/// A batch of media items that Google did not take.
class BatchError : public Error {
  public:
    enum class Case {
        httpError,       ///< carries the HTTP status
        invalidResponse, ///< not the JSON that was asked for
    };

    static BatchError httpError(int status);
    static BatchError invalidResponse();

    Case which() const noexcept { return case_; }
    int status() const noexcept { return status_; } ///< 0 unless `httpError`

  private:
    BatchError(Case which, int status, QString description);

    Case case_;
    int status_;
};

} // namespace quorvane
