#pragma once

#include "emulator/Answer.h"
#include "emulator/Connection.h"
#include "emulator/EmulatorTypes.h"

#include <functional>

namespace quorvane::emulator {

/// One HTTP/1.1 request (RFC 9112) in the hands of its handler: its body is still to be read, its
/// answer to be given. Lives on the connection's thread while the handler runs.
class Exchange {
  public:
    /// `minorVersion` of HTTP/1.
    Exchange(Connection& connection, RecordedRequest head, int minorVersion);

    /// Everything known before the body.
    const RecordedRequest& head() const { return head_; }

    /// False for a body of which nobody says how long it is.
    bool isBodyDelimited() const;

    /// Hands out the body piece by piece. False when `receive` returned false, or when the
    /// client broke off.
    bool readBody(const std::function<bool(QByteArrayView)>& receive);

    bool pause(std::chrono::milliseconds duration) const { return connection_.pause(duration); }
    void waitForEnd() const { connection_.waitForEnd(); }

    /// Closes the connection without an answer.
    void drop();

    /// Sends the answer; with `bodyLimit`, closes after so many bytes of its body.
    void answer(const Answer& answer, std::optional<std::int64_t> bodyLimit);

    /// Whether another request may follow on the connection.
    bool isConnectionKept() const { return isKept_; }

  private:
    using Receive = std::function<bool(QByteArrayView)>;

    bool readPiece(std::int64_t size, const Receive& receive);
    bool readChunks(const Receive& receive);

    Connection& connection_;
    const RecordedRequest head_;
    bool isChunked_ = false;
    std::optional<std::int64_t> length_;
    bool hasUnreadBody_ = false;
    bool isKept_ = false;
};

} // namespace quorvane::emulator
