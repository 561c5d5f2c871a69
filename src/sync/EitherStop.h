#pragma once

#include <stop_token>
#include <utility>

namespace quorvane {

/// Stops when either of two others does.
class EitherStop {
  public:
    EitherStop(std::stop_token first, std::stop_token second)
        : first_(std::move(first), Request{source_}),
          second_(std::move(second), Request{source_}) {}

    std::stop_token token() const { return source_.get_token(); }

  private:
    struct Request {
        std::stop_source source;
        void operator()() { source.request_stop(); }
    };
    std::stop_source source_;
    std::stop_callback<Request> first_;
    std::stop_callback<Request> second_;
};

} // namespace quorvane
