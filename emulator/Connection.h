#pragma once

#include "foundation/File.h"

#include <chrono>
#include <mutex>
#include <optional>

namespace quorvane::emulator {

/// A client's connection. Used by the thread that serves it; only `end` may be called from another.
class Connection {
  public:
    Connection(FileDescriptor socket, int number);

    int number() const { return number_; }

    /// What has come and was not consumed yet; waits when that is nothing. Empty at the end.
    QByteArrayView peek();
    void consume(qsizetype size);

    /// Consumes everything up to and including `mark`, which is left out of the result. None when
    /// the end comes first, or more than `limit` bytes.
    std::optional<QByteArray> readUntil(QByteArrayView mark, qsizetype limit);

    /// Waits until everything is on its way. False when the client has left.
    bool write(QByteArrayView bytes);

    /// Waits. False at once when the client leaves or the connection is ended meanwhile.
    bool pause(std::chrono::milliseconds duration) const;
    void waitForEnd() const;

    /// Ends both directions; the serving thread wakes up wherever it waits. Any thread.
    void end();

    /// The serving thread's last act. Closing, unlike ending, tells a client that is still
    /// sending.
    void close();

  private:
    std::mutex closing_; ///< so that no other thread ends a descriptor that is used anew
    FileDescriptor socket_;
    int number_;
    QByteArray buffer_;
    qsizetype begin_ = 0, end_ = 0;
};

} // namespace quorvane::emulator
