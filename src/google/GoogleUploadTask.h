#pragma once

#include "google/AccessTokenProvider.h"
#include "google/GoogleEndpoints.h"
#include "google/HttpClient.h"
#include "google/TransferActivityTracker.h"
#include "store/SyncRecord.h"

namespace quorvane {

/// Sends the bytes of one staged file to Google Photos. Any thread; blocks its caller.
class GoogleUploadTask {
  public:
    GoogleUploadTask(HttpClient& http, AccessTokenProvider& tokens,
                     TransferActivityTracker& tracker, const GoogleEndpoints& endpoints);

    /// Streams `file` and returns the upload token that makes it a media item named `fileName`.
    /// Progress goes to the tracker under the record's identifier. Nothing is retried. Throws
    /// `UploadError`, `TransportError`, `FileError`, the token provider's errors, or `Cancelled`.
    QString upload(const SyncRecord& record, const std::filesystem::path& file,
                   const QString& fileName, std::stop_token stop);

  private:
    HttpClient& http_;
    AccessTokenProvider& tokens_;
    TransferActivityTracker& tracker_;
    const QUrl uploadEndpoint_;
};

} // namespace quorvane
