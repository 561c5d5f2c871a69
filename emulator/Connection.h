#pragma once

#include "foundation/File.h"

#include <httplib.h>

#include <chrono>
#include <mutex>

namespace quorvane::emulator {

/// A client's connection as httplib reads and writes it. Used by the thread that serves it; only
/// `end` may be called from another.
class Connection final : public httplib::Stream {
  public:
    Connection(FileDescriptor socket, int number);

    int number() const { return number_; }

    /// From here on everything read is kept, until `takeHead` hands it out.
    void beginHead();
    QByteArray takeHead();

    /// Waits. False at once when the client leaves or the connection is ended meanwhile.
    bool pause(std::chrono::milliseconds duration) const;
    void waitForEnd() const;

    /// Ends both directions; the serving thread wakes up wherever it waits. Any thread.
    void end();

    /// The serving thread's last act. Closing, unlike ending, tells a client that is still
    /// sending.
    void close();

    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    ssize_t read(char* target, size_t size) override;
    ssize_t write(const char* bytes, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    int socket() const override { return socket_.get(); }

  private:
    std::mutex closing_; ///< so that no other thread ends a descriptor that is used anew
    FileDescriptor socket_;
    int number_;
    std::vector<char> buffer_;
    size_t begin_ = 0, end_ = 0;
    bool inHead_ = false;
    QByteArray head_;
};

} // namespace quorvane::emulator
