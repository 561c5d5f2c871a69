#pragma once

#include "foundation/Error.h"

namespace quorvane {

/// An album that Google did not make.
class AlbumError : public Error {
  public:
    enum class Case {
        httpError,       ///< carries the HTTP status
        invalidResponse, ///< not the JSON that was asked for
    };

    static AlbumError httpError(int status);
    static AlbumError invalidResponse();

    Case which() const noexcept { return case_; }
    int status() const noexcept { return status_; } ///< 0 unless `httpError`

  private:
    AlbumError(Case which, int status, QString description);

    Case case_;
    int status_;
};

} // namespace quorvane
