#pragma once

#include "emulator/EmulatorTypes.h"

#include <random>

namespace quorvane::emulator {

/// Something that goes wrong with some requests of a kind. What is left out goes as usual.
struct Disturbance {
    RequestKind kind = RequestKind::upload;
    int nth = 1;   ///< the first request hit, counted from 1 after the fault was added
    int times = 1; ///< requests hit in a row; 0: all from the first one on

    std::optional<int> status = {};      ///< answered instead of the true status
    std::optional<QByteArray> body = {}; ///< answered instead of the true body
    QByteArray contentType = "application/json";
    std::optional<std::chrono::seconds> retryAfter = {}; ///< said with a status or body
    /// Whether a request answered with another status or body, or stalled, still has its effect:
    /// the answer alone is lost.
    bool carriedOut = false;

    std::chrono::milliseconds delay{0}; ///< before the answer, on top of the latency
    bool stall = false;                 ///< no answer ever; the client has to leave
    /// Closes the connection after these bytes of the request's body, or of the answer's body.
    std::optional<std::int64_t> dropRequestAfter = {};
    std::optional<std::int64_t> dropAnswerAfter = {};
};

/// The faults to come. Not shared between threads.
class DisturbancePlan {
  public:
    void add(const Disturbance& fault);
    void clear();

    /// The fault that hits the request of `kind` that has just come, if any: the one added first,
    /// else a passing one for so many percent of the library's requests, drawn at random.
    std::optional<Disturbance> next(RequestKind kind, int failingPercent);

  private:
    struct Entry {
        Disturbance fault;
        int seen = 0;
    };
    std::optional<Disturbance> passing(RequestKind kind, int percent);

    std::vector<Entry> entries_;
    std::minstd_rand random_; ///< the same in every run
};

} // namespace quorvane::emulator
