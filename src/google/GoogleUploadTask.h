#pragma once

#include "google/GoogleLibraryApi.h"

namespace quorvane {

/// Sends the bytes of one file to Google Photos. Any thread; blocks its caller.
class GoogleUploadTask {
  public:
    explicit GoogleUploadTask(GoogleLibraryApi& api) : api_(api) {}

    /// Streams `file` and returns the upload token that makes it a media item named `fileName`.
    /// Nothing is retried. Throws `UploadError`, `TransportError`, `FileError`, the token
    /// provider's errors, or `Cancelled`.
    QString upload(const std::filesystem::path& file, const QString& fileName,
                   const HttpRequest::Progress& progress, std::stop_token stop);

  private:
    GoogleLibraryApi& api_;
};

} // namespace quorvane
