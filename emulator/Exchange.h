#pragma once

#include "emulator/Answer.h"
#include "emulator/Connection.h"
#include "emulator/EmulatorTypes.h"

namespace quorvane::emulator {

/// One request in the hands of its handler: its body is still to be read, its answer to be given.
/// Lives on the connection's thread while the handler runs.
class Exchange {
  public:
    Exchange(Connection& connection, const RecordedRequest& head, httplib::Response& response,
             const httplib::ContentReader* body)
        : connection_(connection), head_(head), response_(response), body_(body) {}

    /// Everything known before the body.
    const RecordedRequest& head() const { return head_; }

    /// Hands out the body piece by piece. False when `receive` returned false, or when the
    /// client broke off.
    bool readBody(const std::function<bool(QByteArrayView)>& receive);

    bool pause(std::chrono::milliseconds duration) const { return connection_.pause(duration); }
    void waitForEnd() const { connection_.waitForEnd(); }

    /// Closes the connection without an answer.
    void drop();

    /// Sends the answer when the handler returns; with `bodyLimit`, closes after so many bytes.
    void answer(const Answer& answer, std::optional<std::int64_t> bodyLimit);

  private:
    Connection& connection_;
    const RecordedRequest& head_;
    httplib::Response& response_;
    const httplib::ContentReader* body_;
};

} // namespace quorvane::emulator
