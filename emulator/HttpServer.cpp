#include "emulator/HttpServer.h"

#include "foundation/System.h"

#include <algorithm>
#include <cerrno>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr qsizetype longestHead = 256 << 10;

struct Head {
    RecordedRequest request;
    int minorVersion = 0;
};

/// The request line and header lines, as received; none when they are no HTTP/1.
std::optional<Head> parseHead(const QByteArray& text) {
    QByteArrayList lines = text.split('\n');
    const QByteArrayList words = lines.takeFirst().trimmed().split(' ');
    if (words.size() != 3 || !words[1].startsWith('/') || !words[2].startsWith("HTTP/1."))
        return std::nullopt;
    Head head;
    head.minorVersion = words[2].endsWith('0') ? 0 : 1;
    head.request.method = words[0];
    const qsizetype mark = words[1].indexOf('?');
    head.request.path = mark < 0 ? words[1] : words[1].first(mark);
    head.request.query = mark < 0 ? QByteArray() : words[1].sliced(mark + 1);
    for (const QByteArray& line : lines) {
        if (const qsizetype colon = line.indexOf(':'); colon > 0)
            head.request.headers.emplace_back(line.first(colon), line.sliced(colon + 1).trimmed());
    }
    return head;
}

[[noreturn]] void throwNotListening(int port) {
    const int number = errno;
    throw Error(u"127.0.0.1:%1 dinlenemiyor: %2"_s.arg(port).arg(errorNumberText(number)));
}

} // namespace

HttpServer::~HttpServer() {
    stop();
}

void HttpServer::start(int port) {
    FileDescriptor listener = system::openSocket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (!listener.isOpen() ||
        ::setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        ::bind(listener.get(), generic, length) != 0 || ::listen(listener.get(), SOMAXCONN) != 0 ||
        ::getsockname(listener.get(), generic, &length) != 0)
        throwNotListening(port);
    port_ = ntohs(address.sin_port);
    listener_ = std::move(listener);
    acceptor_ = std::jthread([this] { acceptClients(); });
}

void HttpServer::stop() {
    if (!acceptor_.joinable())
        return;
    ::shutdown(listener_.get(), SHUT_RDWR);
    acceptor_.join();
    for (const auto& client : clients_)
        client->connection.end();
    clients_.clear();
    listener_ = FileDescriptor();
}

void HttpServer::acceptClients() {
    for (int number = 1;; ++number) {
        FileDescriptor socket = system::acceptConnection(listener_.get());
        if (!socket.isOpen() && (errno == EINTR || errno == ECONNABORTED))
            continue;
        if (!socket.isOpen())
            return;
        const int on = 1;
        ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const int bytes = receiveBuffer_;
        ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVBUF, &bytes, sizeof bytes);
        std::erase_if(clients_, [](const auto& client) { return client->isDone.load(); });
        Client& client =
            *clients_.emplace_back(std::make_unique<Client>(std::move(socket), number));
        client.thread = std::jthread([this, &client] {
            serve(client.connection);
            client.connection.close();
            client.isDone = true;
        });
    }
}

void HttpServer::serve(Connection& connection) const {
    while (const auto text = connection.readUntil("\r\n\r\n", longestHead)) {
        auto head = parseHead(*text);
        if (!head) {
            Exchange(connection, {}, 0).answer(textAnswer("Bad Request", 400), std::nullopt);
            return;
        }
        head->request.connection = connection.number();
        Exchange exchange(connection, std::move(head->request), head->minorVersion);
        if (exchange.isBodyDelimited())
            handler_(exchange);
        else
            exchange.answer(textAnswer("Length Required", 411), std::nullopt);
        if (!exchange.isConnectionKept())
            return;
    }
}

} // namespace quorvane::emulator
