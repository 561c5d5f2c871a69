#include "platform/linux/CallbackSocket.h"

#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace quorvane {

namespace {

// One packet is one message: the kind, then the URL. The answer is one packet of one byte.
constexpr char urlKind = 'U';
constexpr char overtakeKind = 'O';
constexpr char takenAnswer = '1';
constexpr char refusedAnswer = '0';
constexpr qsizetype largestMessage = 64 << 10;
constexpr int silenceMilliseconds = 1000;

const QString socketFailure = QStringLiteral("Oturum açma soketi kurulamadı");

sockaddr_un addressOf(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.native().size() >= sizeof address.sun_path)
        throw FileError(socketFailure, path, ENAMETOOLONG);
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    return address;
}

FileDescriptor newSocket() {
    return FileDescriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
}

/// The folder with nobody's rights but ours. A folder of somebody else is refused.
void prepareFolder(const std::filesystem::path& folder) {
    std::error_code ignored;
    std::filesystem::create_directories(folder.parent_path(), ignored);
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        throw FileError(socketFailure, folder, errno);
    struct stat info {};
    if (::lstat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode) ||
        info.st_uid != ::geteuid() || ::chmod(folder.c_str(), 0700) != 0)
        throw FileError(socketFailure, folder, EACCES);
}

bool isSameUser(int connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
}

/// One packet within the time that a visitor may stay silent; empty when none came.
QByteArray receivePacket(int connection, int wake = -1) {
    pollfd waiting[] = {{connection, POLLIN, 0}, {wake, POLLIN, 0}};
    if (::poll(waiting, 2, silenceMilliseconds) <= 0 || waiting[0].revents == 0)
        return {};
    QByteArray packet(largestMessage, Qt::Uninitialized);
    const ssize_t size =
        ::recv(connection, packet.data(), static_cast<size_t>(packet.size()), MSG_TRUNC);
    return size > 0 && size <= packet.size() ? packet.left(size) : QByteArray();
}

/// Sends one message to whoever listens at `path`; the answer is empty when nobody does.
QByteArray converse(const std::filesystem::path& path, const QByteArray& message) {
    const sockaddr_un address = addressOf(path);
    const FileDescriptor socket = newSocket();
    const timeval patience{2, 0};
    ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        !isSameUser(socket.get()) ||
        ::send(socket.get(), message.constData(), static_cast<size_t>(message.size()),
               MSG_NOSIGNAL) != message.size())
        return {};
    return receivePacket(socket.get());
}

} // namespace

CallbackSocket::CallbackSocket(std::filesystem::path path) : path_(std::move(path)) {
    prepareFolder(path_.parent_path());
    const sockaddr_un address = addressOf(path_);
    converse(path_, QByteArray(1, overtakeKind));
    ::unlink(path_.c_str());
    listener_ = newSocket();
    if (::bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::chmod(path_.c_str(), 0600) != 0 || ::listen(listener_.get(), 8) != 0)
        throw FileError(socketFailure, path_, errno);
}

CallbackSocket::~CallbackSocket() {
    giveUpPath();
}

void CallbackSocket::giveUpPath() {
    if (!path_.empty())
        ::unlink(path_.c_str());
    path_.clear();
}

std::optional<CallbackSocket::Visit> CallbackSocket::receive(int wake) {
    Visit visit;
    visit.connection = FileDescriptor(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!visit.connection.isOpen() || !isSameUser(visit.connection.get()))
        return std::nullopt;
    const QByteArray message = receivePacket(visit.connection.get(), wake);
    if (message.isEmpty())
        return std::nullopt;
    visit.overtakes = message.front() == overtakeKind;
    if (visit.overtakes) {
        giveUpPath(); // before the answer: afterwards the path is the successor's
        visit.answer(true);
    } else {
        visit.url = QString::fromUtf8(message.mid(1));
    }
    return visit;
}

void CallbackSocket::Visit::answer(bool taken) const {
    const char byte = taken ? takenAnswer : refusedAnswer;
    ::send(connection.get(), &byte, 1, MSG_NOSIGNAL);
}

bool CallbackSocket::handOver(const std::filesystem::path& path, const QString& url) {
    const QByteArray message = urlKind + url.toUtf8();
    return message.size() <= largestMessage &&
           converse(path, message) == QByteArray(1, takenAnswer);
}

} // namespace quorvane
