#pragma once

#include "emulator/EmulatorTypes.h"

#include <deque>
#include <map>

namespace quorvane::emulator {

/// What was asked and answered, in order of the answers. Holds at most a number of bytes: the
/// oldest requests are forgotten first. Not shared between threads.
class RequestLog {
  public:
    explicit RequestLog(std::int64_t byteLimit) : byteLimit_(byteLimit) {}

    /// Counts a request at its arrival, before its body.
    void count(RequestKind kind) { ++counts_[kind]; }
    int countOf(RequestKind kind) const;
    /// Of all uploads so far, whole or broken off.
    std::int64_t uploadedBytes() const { return uploadedBytes_; }

    void add(const RecordedRequest& request);
    std::vector<RecordedRequest> all() const { return {requests_.begin(), requests_.end()}; }
    void clear();

  private:
    std::int64_t byteLimit_;
    std::int64_t bytes_ = 0;
    std::int64_t uploadedBytes_ = 0;
    std::deque<RecordedRequest> requests_;
    std::map<RequestKind, int> counts_;
};

} // namespace quorvane::emulator
