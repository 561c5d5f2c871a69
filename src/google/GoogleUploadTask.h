#pragma once

#include "google/AccessTokenProvider.h"
#include "google/GoogleEndpoints.h"
#include "google/HttpClient.h"

namespace quorvane {

/// Sends the bytes of one file to Google Photos. Any thread; blocks its caller.
class GoogleUploadTask {
  public:
    GoogleUploadTask(HttpClient& http, AccessTokenProvider& tokens,
                     const GoogleEndpoints& endpoints);

    /// Streams `file` and returns the upload token that makes it a media item named `fileName`.
    /// Nothing is retried. Throws `UploadError`, `TransportError`, `FileError`, the token
    /// provider's errors, or `Cancelled`.
    QString upload(const std::filesystem::path& file, const QString& fileName,
                   const HttpRequest::Progress& progress, std::stop_token stop);

  private:
    HttpClient& http_;
    AccessTokenProvider& tokens_;
    const QUrl uploadEndpoint_;
};

} // namespace quorvane
