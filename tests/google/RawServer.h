#pragma once

#include "foundation/File.h"

#include <QElapsedTimer>
#include <QUrl>

#include <array>
#include <atomic>
#include <cerrno>
#include <functional>
#include <system_error>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

namespace quorvane::test {

/// One accepted connection of a `RawServer`, as far as HTTP is concerned: not at all.
class Peer {
  public:
    Peer(int fd, std::stop_token stop) : fd_(fd), stop_(std::move(stop)) {}

    /// Up to `room` bytes; empty at the end, or when the server stops.
    QByteArray receive(qsizetype room = 1 << 16) {
        pollfd waiting{fd_, POLLIN, 0};
        while (::poll(&waiting, 1, 20) == 0) {
            if (stop_.stop_requested())
                return {};
        }
        QByteArray bytes(room, Qt::Uninitialized);
        bytes.resize(std::max<ssize_t>(::recv(fd_, bytes.data(), static_cast<size_t>(room), 0), 0));
        return bytes;
    }

    /// A request's head and body; the body's length as its head says.
    QByteArray receiveRequest() {
        QByteArray text;
        qsizetype expected = -1;
        while (expected < 0 || text.size() < expected) {
            const QByteArray more = receive();
            if (more.isEmpty())
                break;
            text += more;
            if (const auto end = text.indexOf("\r\n\r\n"); expected < 0 && end >= 0) {
                const auto field = text.indexOf("Content-Length: ");
                expected = end + 4;
                if (field >= 0)
                    expected +=
                        text.mid(field + 16, text.indexOf('\r', field) - field - 16).toInt();
            }
        }
        return text;
    }

    /// Receives so many bytes and forgets them. False when they do not come.
    bool drain(qsizetype count) {
        std::array<char, 1 << 16> buffer;
        while (count > 0 && !stop_.stop_requested()) {
            const size_t room = std::min<size_t>(buffer.size(), static_cast<size_t>(count));
            const ssize_t size = ::recv(fd_, buffer.data(), room, 0);
            if (size <= 0)
                return false;
            count -= size;
        }
        return count == 0;
    }

    void send(const QByteArray& bytes) {
        ::send(fd_, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
    }

    void reset() {
        const linger now{1, 0};
        ::setsockopt(fd_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    }

    /// Waits like a peer that has nothing to say; until the server stops at the latest.
    void stayQuiet(int milliseconds = 60'000) {
        QElapsedTimer timer;
        timer.start();
        while (!stop_.stop_requested() && timer.elapsed() < milliseconds)
            ::poll(nullptr, 0, 10);
    }

  private:
    int fd_;
    std::stop_token stop_;
};

/// A loopback server that runs a script per connection, each on its own thread.
class RawServer {
  public:
    explicit RawServer(std::function<void(Peer&)> script) : script_(std::move(script)) {
        listener_ = FileDescriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        // What the script does not read stays with the sender, as on a real network.
        const int room = 64 << 10;
        ::setsockopt(listener_.get(), SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
        if (::bind(listener_.get(), reinterpret_cast<sockaddr*>(&address), size) != 0)
            throw std::system_error(errno, std::generic_category(), "bind");
        ::listen(listener_.get(), 8);
        ::getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        acceptor_ = std::jthread([this](std::stop_token stop) { run(stop); });
    }

    QUrl url(const QString& path = QStringLiteral("/")) const {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port_).arg(path));
    }

    int connections() const { return connections_; }

  private:
    void run(const std::stop_token& stop) {
        std::vector<std::jthread> peers;
        while (!stop.stop_requested()) {
            pollfd waiting{listener_.get(), POLLIN, 0};
            if (::poll(&waiting, 1, 20) <= 0)
                continue;
            const int fd = ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC);
            ++connections_;
            peers.emplace_back([this, fd](std::stop_token peerStop) {
                const FileDescriptor owned(fd);
                Peer peer(fd, peerStop);
                script_(peer);
            });
        }
    }

    std::function<void(Peer&)> script_;
    FileDescriptor listener_;
    int port_ = 0;
    std::atomic<int> connections_ = 0;
    std::jthread acceptor_;
};

} // namespace quorvane::test
