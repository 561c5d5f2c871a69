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

/// A message is the URLs, one per line.
std::vector<QUrl> urlsIn(const QByteArray& message) {
    std::vector<QUrl> urls;
    for (const QByteArray& line : message.split('\n'))
        if (!line.isEmpty())
            urls.push_back(QUrl::fromEncoded(line));
    return urls;
}

} // namespace

SingleInstance::SingleInstance(const std::filesystem::path& folder)
    : address_(prepared(folder) + QStringLiteral(".socket")),
      lock_(pathText(folder / "window.lock")) {
    lock_.setStaleLockTime(0); // the holder's process decides, not the time
    server_.setSocketOptions(QLocalServer::UserAccessOption);
}

bool SingleInstance::claim(const std::vector<QUrl>& urls) {
    if (!lock_.tryLock()) {
        if (lock_.error() == QLockFile::LockFailedError)
            return !tell(urls);
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
                onLaterStart(urlsIn(visitor->readAll()));
        });
    });
    server_.listen(address_);
}

bool SingleInstance::tell(const std::vector<QUrl>& urls) const {
    QLocalSocket socket;
    socket.connectToServer(address_);
    if (!socket.waitForConnected(patience))
        return false;
    for (const QUrl& url : urls)
        socket.write(url.toEncoded() + '\n');
    socket.flush();
    socket.disconnectFromServer();
    return socket.state() == QLocalSocket::UnconnectedState || socket.waitForDisconnected(patience);
}

} // namespace quorvane
