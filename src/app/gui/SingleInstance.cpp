#include "app/gui/SingleInstance.h"

#include "foundation/File.h"

#include <QLocalSocket>

namespace quorvane {

namespace {

constexpr int patience = 2000;               // milliseconds for the other process
constexpr qint64 largestMessage = 256 << 10; // bytes

QString prepared(const std::filesystem::path& folder) {
    std::error_code ignored; // a folder that cannot be made shows when the lock is taken
    std::filesystem::create_directories(folder, ignored);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
    return pathText(folder / "window");
}

/// A message is the activation token, percent-encoded, and the URLs, one per line.
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
    : address_(prepared(folder) + QStringLiteral(".socket")),
      lock_(pathText(folder / "window.lock")) {
    lock_.setStaleLockTime(0); // the holder's process decides, not the time
    server_.setSocketOptions(QLocalServer::UserAccessOption);
}

bool SingleInstance::claim(const Start& start) {
    if (!lock_.tryLock()) {
        if (lock_.error() == QLockFile::LockFailedError)
            return !tell(start);
        return true; // no place for a lock: better twice than not at all
    }
    listen();
    return true;
}

void SingleInstance::listen() {
    QLocalServer::removeServer(address_); // of a process that died; the lock says that it is gone
    QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] {
        QLocalSocket* visitor = server_.nextPendingConnection();
        visitor->setReadBufferSize(largestMessage);
        QObject::connect(visitor, &QLocalSocket::disconnected, &server_, [this, visitor] {
            visitor->deleteLater();
            if (onLaterStart)
                onLaterStart(startIn(visitor->readAll()));
        });
    });
    server_.listen(address_);
}

bool SingleInstance::tell(const Start& start) const {
    QLocalSocket socket;
    socket.connectToServer(address_);
    if (!socket.waitForConnected(patience))
        return false;
    socket.write(messageOf(start));
    socket.flush();
    socket.disconnectFromServer();
    return socket.state() == QLocalSocket::UnconnectedState || socket.waitForDisconnected(patience);
}

} // namespace quorvane
