#pragma once

#include "google/HttpClient.h"

namespace quorvane {

/// Takes in a response as it arrives, no more of it than is allowed. Not shared between threads.
class ResponseReader {
  public:
    explicit ResponseReader(std::int64_t largestBody) : largestBody_(largestBody) {}

    /// Each is false once there is too much of it; then so is the answer as a whole.
    bool takeBody(QByteArrayView bytes);
    bool takeHeaderLine(QByteArrayView line);

    bool isTooLarge() const { return tooLarge_; }
    std::int64_t received() const { return headerBytes_ + response_.body.size(); } ///< bytes

    /// What came, as the answer with this status. Call once.
    HttpResponse finish(int status);

  private:
    std::int64_t largestBody_;
    std::int64_t headerBytes_ = 0;
    bool tooLarge_ = false;
    HttpResponse response_;
};

} // namespace quorvane
