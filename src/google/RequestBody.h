#pragma once

#include "foundation/File.h"
#include "google/HttpClient.h"

#include <cstdint>
#include <optional>

namespace quorvane {

/// Reads a request's body piece by piece, from memory or from its file, which is never held in
/// memory. Refers to the request. Not shared between threads.
class RequestBody {
  public:
    /// Throws `FileError` when the body is to come from something that is not a readable file.
    explicit RequestBody(const HttpRequest& request);

    std::int64_t size() const { return size_; }
    std::int64_t remaining() const { return size_ - offset_; }

    /// Copies the next bytes, at most `room`; 0 at the end. None when the file cannot be read or
    /// became shorter: `errorNumber` tells why.
    std::optional<size_t> read(char* buffer, size_t room);

    void seek(std::int64_t offset) { offset_ = offset; }

    /// 0 as long as nothing went wrong.
    int errorNumber() const { return errorNumber_; }

  private:
    const HttpRequest& request_;
    FileDescriptor file_;
    std::int64_t start_ = 0; ///< in the file
    std::int64_t size_ = 0;
    std::int64_t offset_ = 0;
    int errorNumber_ = 0;
};

} // namespace quorvane
