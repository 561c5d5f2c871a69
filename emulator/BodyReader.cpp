#include "emulator/BodyReader.h"

#include <algorithm>

namespace quorvane::emulator {

namespace {

constexpr std::int64_t largestPlainBody = 16 << 20;

/// Slows the reader down to a number of bytes per second.
class Throttle {
  public:
    explicit Throttle(std::int64_t bytesPerSecond) : bytesPerSecond_(bytesPerSecond) {}

    /// How long to wait after `received` bytes in all.
    std::chrono::milliseconds due(std::int64_t received) const {
        if (bytesPerSecond_ <= 0)
            return {};
        const std::chrono::duration<double> planned(static_cast<double>(received) /
                                                    static_cast<double>(bytesPerSecond_));
        return std::chrono::ceil<std::chrono::milliseconds>(
            planned - (std::chrono::steady_clock::now() - start_));
    }

  private:
    std::int64_t bytesPerSecond_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

} // namespace

bool readBody(Exchange& exchange, Call& call, ByteSink* sink, const Behaviour& behaviour,
              const Disturbance& fault) {
    RecordedRequest& request = call.request;
    const Throttle throttle(sink ? behaviour.uploadBytesPerSecond : 0);
    const auto receive = [&](QByteArrayView bytes) {
        const std::int64_t left =
            fault.dropRequestAfter ? *fault.dropRequestAfter - request.bodySize : bytes.size();
        const QByteArrayView taken =
            bytes.first(static_cast<qsizetype>(std::clamp<std::int64_t>(left, 0, bytes.size())));
        request.bodySize += taken.size();
        if (sink)
            sink->add(taken);
        else
            request.body.append(taken);
        return taken.size() == bytes.size() && (sink || request.bodySize <= largestPlainBody) &&
               exchange.pause(throttle.due(request.bodySize));
    };
    return exchange.readBody(receive) && !fault.dropRequestAfter;
}

} // namespace quorvane::emulator
