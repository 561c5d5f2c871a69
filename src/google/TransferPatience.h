#pragma once

#include "google/HttpClient.h"

#include <algorithm>

namespace quorvane {

/// What moves while data moves in either direction.
struct TransferActivity {
    std::int64_t sent = 0;     ///< bytes of the body
    std::int64_t received = 0; ///< bytes
    int waitingInSystem = 0;   ///< bytes the system took and the peer has not acknowledged
    bool operator==(const TransferActivity&) const = default;
};

/// How long one transfer may still go on. Not shared between threads.
class TransferPatience {
  public:
    using Steady = std::chrono::steady_clock;
    using Duration = Steady::duration;

    TransferPatience(const HttpRequest& request, std::int64_t bodySize)
        : request_(request), bodySize_(bodySize) {}

    /// More than nothing. Throws `TransportError` when it is used up.
    Duration left(const TransferActivity& activity) {
        const auto now = Steady::now();
        if (activity != last_)
            lastMoved_ = now;
        last_ = activity;
        if (!sent_ && activity.sent >= bodySize_ && activity.waitingInSystem == 0)
            sent_ = now;
        const Duration quiet = request_.timeout - (now - lastMoved_);
        if (quiet <= Duration::zero())
            throw TransportError(QStringLiteral("Sunucu %1 saniyedir yanıt vermiyor "
                                                "(connection): zaman aşımı")
                                     .arg(request_.timeout.count()));
        if (!sent_)
            return quiet;
        const Duration answer = request_.answerLimit - (now - *sent_);
        if (answer <= Duration::zero())
            throw TransportError(QStringLiteral("Sunucunun yanıtı %1 saniyede tamamlanmadı "
                                                "(connection): zaman aşımı")
                                     .arg(request_.answerLimit.count()));
        return std::min(quiet, answer);
    }

  private:
    const HttpRequest& request_;
    const std::int64_t bodySize_;
    TransferActivity last_;
    Steady::time_point lastMoved_ = Steady::now();
    std::optional<Steady::time_point> sent_;
};

} // namespace quorvane
