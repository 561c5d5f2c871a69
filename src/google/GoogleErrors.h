#pragma once

#include "foundation/Error.h"
#include "google/HttpClient.h"

namespace quorvane {

/// An upload that Google did not take.
class UploadError : public Error {
  public:
    static UploadError httpError(const HttpResponse& response);
    static UploadError emptyToken();           ///< answered with nothing
    static UploadError noToken();              ///< answered with something that is no upload token
    static UploadError invalidResponse();      ///< without what the protocol wants
    static UploadError tooLarge(bool isMovie); ///< beyond what Google takes; nothing was sent

  private:
    using Error::Error;
};

/// A batch of media items that Google did not take.
class BatchError : public Error {
  public:
    /// `albumID` is the album that the items were to go to.
    static BatchError httpError(const HttpResponse& response,
                                const std::optional<QString>& albumID = {});
    static BatchError invalidResponse(); ///< not the JSON that was asked for

  private:
    using Error::Error;
};

/// An album that Google did not make, or items that it did not put into one.
class AlbumError : public Error {
  public:
    static AlbumError additionRefused(const HttpResponse& response);
    static AlbumError httpError(const HttpResponse& response);
    static AlbumError invalidResponse(); ///< not the JSON that was asked for

  private:
    using Error::Error;
};

} // namespace quorvane
