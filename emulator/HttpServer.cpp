#include "emulator/HttpServer.h"

#include <algorithm>
#include <cerrno>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

/// What a connection's thread is at; httplib's handlers are given nothing to find it by.
struct Serving {
    Connection* connection = nullptr;
    RecordedRequest head;
};
thread_local Serving serving;

/// The request line and header lines, as received.
RecordedRequest parseHead(const QByteArray& head) {
    RecordedRequest request;
    QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
    if (words.size() == 3) {
        request.method = words[0];
        const qsizetype mark = words[1].indexOf('?');
        request.path = mark < 0 ? words[1] : words[1].first(mark);
        request.query = mark < 0 ? QByteArray() : words[1].sliced(mark + 1);
    }
    for (const QByteArray& line : lines) {
        if (const qsizetype colon = line.indexOf(':'); colon > 0)
            request.headers.emplace_back(line.first(colon), line.sliced(colon + 1).trimmed());
    }
    return request;
}

[[noreturn]] void throwNotListening(int port) {
    const int number = errno;
    throw Error(u"127.0.0.1:%1 dinlenemiyor: %2"_s.arg(port).arg(errorNumberText(number)));
}

} // namespace

HttpServer::HttpServer(Handler handler) : handler_(std::move(handler)) {
    const auto withoutBody = [this](const httplib::Request& request, httplib::Response& response) {
        handle(request, response, nullptr);
    };
    const auto withBody = [this](const httplib::Request& request, httplib::Response& response,
                                 const httplib::ContentReader& body) {
        handle(request, response, &body);
    };
    Get(".*", withoutBody);
    Options(".*", withoutBody);
    Post(".*", withBody);
    Put(".*", withBody);
    Patch(".*", withBody);
    Delete(".*", withBody);
}

HttpServer::~HttpServer() {
    stop();
}

void HttpServer::start(int port) {
    FileDescriptor listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
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
    svr_sock_ = listener_.get(); // without it httplib believes that it is shutting down
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
    svr_sock_ = INVALID_SOCKET;
    listener_ = FileDescriptor();
}

void HttpServer::acceptClients() {
    for (int number = 1;; ++number) {
        FileDescriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
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

void HttpServer::serve(Connection& connection) {
    serving.connection = &connection;
    bool isClosed = false;
    do {
        connection.beginHead();
        const bool answered =
            process_request(connection, false, isClosed, [&](httplib::Request& request) {
                serving.head = parseHead(connection.takeHead());
                serving.head.connection = connection.number();
                // The body is to be handed on as it comes, whatever it is said to be.
                request.headers.erase("Content-Type");
                request.headers.erase("Content-Encoding");
            });
        if (!answered)
            return;
    } while (!isClosed);
}

void HttpServer::handle(const httplib::Request& request, httplib::Response& response,
                        const httplib::ContentReader* body) {
    Exchange exchange(*serving.connection, serving.head, response, body);
    if (body && !request.has_header("Content-Length") &&
        request.get_header_value("Transfer-Encoding") != "chunked")
        exchange.answer(textAnswer("Length Required", 411), std::nullopt);
    else
        handler_(exchange);
}

} // namespace quorvane::emulator
