#include "emulator/Connection.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace quorvane::emulator {

namespace {

constexpr size_t bufferSize = 64 * 1024;

/// False when the other side left or the connection was ended; true after `milliseconds`.
bool stays(int socket, int milliseconds) {
    pollfd entry{.fd = socket, .events = POLLRDHUP, .revents = 0};
    int ready = 0;
    do
        ready = ::poll(&entry, 1, milliseconds);
    while (ready < 0 && errno == EINTR);
    return ready == 0;
}

} // namespace

Connection::Connection(FileDescriptor socket, int number)
    : socket_(std::move(socket)), number_(number), buffer_(bufferSize) {}

void Connection::beginHead() {
    head_.clear();
    inHead_ = true;
}

QByteArray Connection::takeHead() {
    inHead_ = false;
    return std::exchange(head_, {});
}

bool Connection::pause(std::chrono::milliseconds duration) const {
    return duration.count() <= 0 || stays(socket_.get(), static_cast<int>(duration.count()));
}

void Connection::waitForEnd() const {
    stays(socket_.get(), -1);
}

void Connection::end() {
    const std::lock_guard lock(closing_);
    if (socket_.isOpen())
        ::shutdown(socket_.get(), SHUT_RDWR);
}

void Connection::close() {
    const std::lock_guard lock(closing_);
    socket_ = FileDescriptor();
}

ssize_t Connection::read(char* target, size_t size) {
    if (begin_ == end_) {
        ssize_t count = 0;
        do
            count = ::recv(socket_.get(), buffer_.data(), buffer_.size(), 0);
        while (count < 0 && errno == EINTR);
        if (count <= 0)
            return count;
        begin_ = 0;
        end_ = static_cast<size_t>(count);
    }
    const size_t count = std::min(size, end_ - begin_);
    std::copy_n(buffer_.data() + begin_, count, target);
    begin_ += count;
    if (inHead_)
        head_.append(target, static_cast<qsizetype>(count));
    return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* bytes, size_t size) {
    ssize_t count = 0;
    do
        count = ::send(socket_.get(), bytes, size, MSG_NOSIGNAL);
    while (count < 0 && errno == EINTR);
    return count;
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
    ip = "127.0.0.1";
    port = 0;
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
    get_remote_ip_and_port(ip, port);
}

} // namespace quorvane::emulator
