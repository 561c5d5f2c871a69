#include "bench/UploadSink.h"

#include "foundation/System.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quorvane::bench {

namespace {

constexpr size_t pieceBytes = 1 << 20;

FileDescriptor listenAnywhere() {
    FileDescriptor listener = system::openSocket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (!listener.isOpen() || ::bind(listener.get(), generic, size) != 0 ||
        ::listen(listener.get(), 8) != 0 || ::getsockname(listener.get(), generic, &size) != 0)
        throw Error(errorNumberText(errno));
    std::printf("%d\n", ntohs(address.sin_port));
    std::fflush(stdout);
    return listener;
}

/// Answers one request; false when the peer left.
bool serve(int peer) {
    QByteArray head;
    qsizetype end = -1;
    while ((end = head.indexOf("\r\n\r\n")) < 0) {
        char piece[4096];
        const ssize_t count = ::recv(peer, piece, sizeof piece, 0);
        if (count <= 0)
            return false;
        head.append(piece, count);
    }
    const qsizetype field = head.toLower().indexOf("\r\ncontent-length:");
    qlonglong left = 0;
    if (field >= 0)
        left = head.mid(field + 17, head.indexOf('\r', field + 2) - field - 17).toLongLong();
    left -= head.size() - end - 4;
    while (left > 0) {
        const size_t piece = std::min(pieceBytes, static_cast<size_t>(left));
        const ssize_t count = ::recv(peer, nullptr, piece, MSG_TRUNC); // thrown away uncopied
        if (count <= 0)
            return false;
        left -= count;
    }
    constexpr char answer[] = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\ntoken";
    return system::sendBytes(peer, answer, sizeof answer - 1) > 0;
}

} // namespace

void runUploadSink() {
    const FileDescriptor listener = listenAnywhere();
    while (true) {
        const FileDescriptor peer = system::acceptConnection(listener.get());
        while (peer.isOpen() && serve(peer.get())) {
        }
    }
}

} // namespace quorvane::bench
