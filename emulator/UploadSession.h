#pragma once

#include "emulator/UploadBody.h"

#include <mutex>

namespace quorvane::emulator {

/// A resumable upload between its start and its end. Used by one request at a time, which holds
/// `turn`: a client that comes back may be here before its broken connection is noticed.
class UploadSession final : public ByteSink {
  public:
    /// Pieces but the last are multiples of it; of a piece that broke off, whole ones are kept.
    static constexpr std::int64_t granularity = std::int64_t(256) * 1024;

    /// `start` has announced the upload; its size is none when the header is missing.
    UploadSession(Call start, std::optional<std::int64_t> size);

    std::mutex turn;

    /// A piece begins. What is not at the place where the last one ended is read and thrown away.
    void begin(std::int64_t offset);
    void add(QByteArrayView bytes) override;
    void end(bool isWhole);

    bool isAtItsPlace() const { return isAtItsPlace_; }
    std::int64_t received() const { return received_; } ///< bytes
    bool isComplete() const { return size_ && received_ == *size_; }

    /// The whole upload as one request. Call once.
    Call finish();

  private:
    Call start_;
    std::optional<std::int64_t> size_;
    std::int64_t received_ = 0;
    bool isAtItsPlace_ = false;
    QByteArray rest_; ///< less than a granule
};

} // namespace quorvane::emulator
