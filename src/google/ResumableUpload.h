#pragma once

#include "google/GoogleUploadTask.h"

namespace quorvane {

/// One upload in pieces, as Google documents it ("Resumable uploads" of the Photos Library API):
///
///     start ──address──> upload ... upload ──> upload, finalize ──> token
///     query ──how much Google has──┘
///
/// Used by one thread.
class ResumableUpload {
  public:
    struct Job {
        const UploadSource& source;
        std::int64_t size; ///< of the file, bytes
        UploadMemory& memory;
        const HttpRequest::Progress& progress;
        std::stop_token stop;
    };

    ResumableUpload(GoogleLibraryApi& api, const Job& job) : api_(api), job_(job) {}

    /// The answer that carries the token. Broken pieces are taken up for as long as each attempt
    /// brings the upload further, and an upload that Google does not know any more begins anew,
    /// once. Throws as `GoogleUploadTask::upload`.
    HttpResponse send();

  private:
    void start();
    bool takeUp();
    std::int64_t pieceSize() const;
    HttpResponse sendPiece();
    HttpResponse command(const QByteArray& words, HttpRequest request = {});
    void learnGranularity(const HttpResponse& response);

    GoogleLibraryApi& api_;
    const Job job_;
    QUrl address_;
    std::int64_t offset_ = 0; ///< bytes that Google has
    std::int64_t granularity_ = std::int64_t(256) << 10;
    int startsLeft_ = 2;
};

} // namespace quorvane
