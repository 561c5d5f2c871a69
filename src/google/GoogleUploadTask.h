#pragma once

#include "google/GoogleLibraryApi.h"
#include "google/UploadSource.h"

namespace quorvane {

/// The header that names the item; every name fits into it.
std::pair<QByteArray, QByteArray> uploadNameHeader(const QString& fileName);

/// Sends the bytes of one file to Google Photos: in one request, or in pieces when it is large.
/// Any thread; blocks its caller.
class GoogleUploadTask {
  public:
    static constexpr std::int64_t resumableFrom = 50'000'000; ///< bytes
    /// What Google takes, 200 MB and 20 GB, counted generously.
    static constexpr std::int64_t largestPicture = std::int64_t(200) << 20;
    static constexpr std::int64_t largestMovie = std::int64_t(20) << 30;

    explicit GoogleUploadTask(GoogleLibraryApi& api) : api_(api) {}

    /// Streams the file and returns the upload token that makes it a media item. A large one goes
    /// on where `memory` knows that an earlier call ended; nothing else is retried. Throws
    /// `GoogleError`, `TransportError`, `FileError`, the token provider's errors, the memory's, or
    /// `Cancelled`.
    QString upload(const UploadSource& source, UploadMemory& memory,
                   const HttpRequest::Progress& progress, std::stop_token stop);

  private:
    HttpResponse sendAtOnce(const UploadSource& source, const HttpRequest::Progress& progress,
                            const std::stop_token& stop);

    GoogleLibraryApi& api_;
};

} // namespace quorvane
