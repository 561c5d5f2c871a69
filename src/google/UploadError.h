#pragma once

#include "foundation/Error.h"

namespace quorvane {

/// An upload that Google did not take.
class UploadError : public Error {
  public:
    enum class Case {
        httpError,  ///< carries the HTTP status
        emptyToken, ///< answered with nothing
        noToken,    ///< answered with something that is no upload token
    };

    static UploadError httpError(int status);
    static UploadError emptyToken();
    static UploadError noToken();

    Case which() const noexcept { return case_; }
    int status() const noexcept { return status_; } ///< 0 unless `httpError`

  private:
    UploadError(Case which, int status, QString description);

    Case case_;
    int status_;
};

} // namespace quorvane
