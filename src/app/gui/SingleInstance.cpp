#include "app/gui/SingleInstance.h"

#include "foundation/File.h"

#include <QLocalSocket>

#include <chrono>
#include <thread>

namespace quorvane {

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::duration<int, std::milli> patience{2000}; // for the other process
constexpr auto step = 50ms;
constexpr char end = '\0';                   // of a message, and the answer to it
constexpr qint64 largestMessage = 256 << 10; // bytes

QString prepared(const std::filesystem::path& folder) {
    std::error_code ignored; // a folder that cannot be made shows when the lock is taken
    std::filesystem::create_directories(folder, ignored);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
    return pathText(folder / "window");
}

/// A message is the activation token, percent-encoded, and the URLs, one per line; a zero ends it.
QByteArray messageOf(const Start& start) {
    QByteArray message = QUrl::toPercentEncoding(start.activationToken) + '\n';
    for (const QUrl& url : start.urls)
        message += url.toEncoded() + '\n';
    return message;
}

Start startIn(const QByteArray& message) {
    QList<QByteArray> lines = message.split('\n');
    Start start{{}, QUrl::fromPercentEncoding(lines.takeFirst())};
    for (const QByteArray& line : lines)
        if (!line.isEmpty())
            start.urls.push_back(QUrl::fromEncoded(line));
    return start;
}

} // namespace

SingleInstance::SingleInstance(const std::filesystem::path& folder)
    : lockFile_(folder / "window.lock"), address_(prepared(folder) + QStringLiteral(".socket")) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
}

/// Who holds the lock may be about to end: what was said to it is nobody's until it answers.
bool SingleInstance::claim(const Start& start) {
    if (isFirst())
        return true;
    if (tell(start))
        return false;
    for (auto waited = 0ms; waited < patience; waited += step) {
        if (isFirst())
            return true;
        std::this_thread::sleep_for(step);
    }
    return true; // better twice than not at all
}

bool SingleInstance::isFirst() {
    try {
        lock_ = FileLock::tryLock(lockFile_);
        if (lock_)
            listen();
        return lock_.has_value();
    } catch (const FileError&) { // no place for a lock: better twice than not at all
        return true;
    }
}

void SingleInstance::listen() {
    QLocalServer::removeServer(address_); // of a process that died; the lock says that it is gone
    QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] {
        QLocalSocket* visitor = server_.nextPendingConnection();
        visitor->setReadBufferSize(largestMessage);
        QObject::connect(visitor, &QLocalSocket::disconnected, visitor, &QObject::deleteLater);
        QObject::connect(visitor, &QLocalSocket::readyRead, &server_,
                         [this, visitor] { hear(*visitor); });
    });
    server_.listen(address_);
}

void SingleInstance::hear(QLocalSocket& visitor) {
    if (!visitor.peek(largestMessage).endsWith(end))
        return;
    const QByteArray message = visitor.readAll().chopped(1);
    visitor.write(&end, 1);
    visitor.disconnectFromServer();
    if (onLaterStart)
        onLaterStart(startIn(message));
}

/// False when nobody is there to hear it any more. Who is busy will.
bool SingleInstance::tell(const Start& start) const {
    QLocalSocket socket;
    socket.connectToServer(address_);
    if (!socket.waitForConnected(patience.count()))
        return false;
    socket.write(messageOf(start) + end);
    return socket.waitForReadyRead(patience.count()) ||
           socket.state() == QLocalSocket::ConnectedState;
}

} // namespace quorvane
