#include "bench/UploadSink.h"

#include "foundation/System.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <thread>

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

/// The value of a header field, as it was sent; empty without one.
QByteArray field(const QByteArray& head, const QByteArray& lowerCaseName) {
    const qsizetype at = head.toLower().indexOf("\r\n" + lowerCaseName + ':');
    const qsizetype value = at + lowerCaseName.size() + 3;
    return at < 0 ? QByteArray() : head.mid(value, head.indexOf('\r', value) - value).trimmed();
}

/// As the service answers each step of an upload in pieces; a whole upload in one request needs no
/// more than the token.
QByteArray answerTo(const QByteArray& head) {
    const QByteArray command = field(head, "x-goog-upload-command");
    QByteArray answer = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n";
    if (command == "start")
        answer += "X-Goog-Upload-URL: http://" + field(head, "host") + "/piece\r\n";
    answer += "X-Goog-Upload-Status: ";
    return answer + (command.endsWith("finalize") ? "final" : "active") + "\r\n\r\ntoken";
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
    qlonglong left = field(head, "content-length").toLongLong() - (head.size() - end - 4);
    while (left > 0) {
        const size_t piece = std::min(pieceBytes, static_cast<size_t>(left));
        const ssize_t count = ::recv(peer, nullptr, piece, MSG_TRUNC); // thrown away uncopied
        if (count <= 0)
            return false;
        left -= count;
    }
    const QByteArray answer = answerTo(head.left(end + 2));
    return system::sendBytes(peer, answer.constData(), static_cast<size_t>(answer.size())) > 0;
}

} // namespace

void runUploadSink() {
    const FileDescriptor listener = listenAnywhere();
    while (true)
        std::thread([peer = system::acceptConnection(listener.get())] {
            while (peer.isOpen() && serve(peer.get())) {
            }
        }).detach(); // a client keeps one open while it uses another; all end with the program
}

} // namespace quorvane::bench
