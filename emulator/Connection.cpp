#include "emulator/Connection.h"

#include "foundation/System.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace quorvane::emulator {

namespace {

constexpr qsizetype bufferSize = 65'536;

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
    : socket_(std::move(socket)), number_(number), buffer_(bufferSize, Qt::Uninitialized) {}

QByteArrayView Connection::peek() {
    if (begin_ == end_) {
        ssize_t count = 0;
        do
            count = ::recv(socket_.get(), buffer_.data(), static_cast<size_t>(buffer_.size()), 0);
        while (count < 0 && errno == EINTR);
        begin_ = 0;
        end_ = std::max<ssize_t>(count, 0);
    }
    return QByteArrayView(buffer_).sliced(begin_, end_ - begin_);
}

void Connection::consume(qsizetype size) {
    begin_ += size;
}

std::optional<QByteArray> Connection::readUntil(QByteArrayView mark, qsizetype limit) {
    QByteArray text;
    while (text.size() <= limit) {
        const QByteArrayView more = peek();
        if (more.isEmpty())
            return std::nullopt;
        const qsizetype known = text.size();
        text.append(more);
        const qsizetype found = text.indexOf(mark, std::max<qsizetype>(known - mark.size() + 1, 0));
        if (found < 0) {
            consume(more.size());
            continue;
        }
        consume(found + mark.size() - known);
        text.truncate(found);
        return text;
    }
    return std::nullopt;
}

bool Connection::write(QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t count =
            system::sendBytes(socket_.get(), bytes.data(), static_cast<size_t>(bytes.size()));
        if (count < 0 && errno != EINTR)
            return false;
        bytes = bytes.sliced(std::max<ssize_t>(count, 0));
    }
    return true;
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

} // namespace quorvane::emulator
