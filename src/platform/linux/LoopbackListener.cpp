#include "platform/linux/LoopbackListener.h"

#include "google/OAuthMessages.h"

#include <QUrlQuery>

#include <algorithm>
#include <array>
#include <cerrno>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr size_t mostVisitors = 32;
/// A browser sends the cookies of every program that ever served at this address.
constexpr qsizetype longestHead = 128 << 10;

const QString path = QStringLiteral("/oauth2redirect");

QByteArray httpAnswer(const QByteArray& status, const QByteArray& title, const QByteArray& text) {
    const QByteArray body = "<!DOCTYPE html><html lang=\"tr\"><head><meta charset=\"utf-8\">"
                            "<link rel=\"icon\" href=\"data:,\"><title>Quorvane</title>"
                            "<style>body{font:17px sans-serif;text-align:center;margin-top:18vh}"
                            "</style></head><body><h1>" +
                            title + "</h1><p>" + text + "</p></body></html>\n";
    return "HTTP/1.1 " + status + "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " +
           QByteArray::number(body.size()) +
           "\r\nCache-Control: no-store\r\nReferrer-Policy: no-referrer\r\n"
           "Connection: close\r\n\r\n" +
           body;
}

const QByteArray notFound = httpAnswer("404 Not Found", "Sayfa bulunamadı",
                                       "Burada yalnızca bekleyen bir giriş yanıtlanır.");
const QByteArray taken =
    httpAnswer("200 OK", "Giriş Quorvane'e iletildi", "Bu sayfayı kapatabilirsiniz.");
const QByteArray refused = httpAnswer("200 OK", "Giriş onaylanmadı",
                                      "Quorvane'de yeniden deneyebilirsiniz. Bu sayfayı "
                                      "kapatabilirsiniz.");

[[noreturn]] void throwUnavailable() {
    throw Error(QStringLiteral("Bu bilgisayarda geri dönüş adresi açılamadı: ") +
                errorNumberText(errno));
}

} // namespace

std::optional<QUrl> requestedURL(const QByteArray& head, const QString& origin) {
    const QByteArrayList parts = head.left(head.indexOf("\r\n")).split(' ');
    if (parts.size() != 3 || parts[0] != "GET" || !parts[1].startsWith('/') ||
        !parts[2].startsWith("HTTP/1."))
        return std::nullopt;
    const QUrl url = QUrl::fromEncoded(origin.toUtf8() + parts[1], QUrl::StrictMode);
    return url.isValid() ? std::optional(url) : std::nullopt;
}

LoopbackListener::LoopbackListener(QString state)
    : state_(std::move(state)),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)),
      events_(::epoll_create1(EPOLL_CLOEXEC)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    epoll_event event{.events = EPOLLIN, .data = {.fd = listener_.get()}};
    if (::bind(listener_.get(), generic, size) != 0 || ::listen(listener_.get(), 16) != 0 ||
        ::getsockname(listener_.get(), generic, &size) != 0 ||
        ::epoll_ctl(events_.get(), EPOLL_CTL_ADD, listener_.get(), &event) != 0)
        throwUnavailable();
    port_ = ntohs(address.sin_port);
}

QString LoopbackListener::redirectURI() const {
    return QStringLiteral("http://127.0.0.1:%1").arg(port_) + path;
}

bool LoopbackListener::isCallback(const QUrl& url) const {
    const QUrlQuery query(url);
    return url.adjusted(QUrl::RemoveQuery | QUrl::RemoveFragment) == QUrl(redirectURI()) &&
           query.queryItemValue(QStringLiteral("state"), QUrl::FullyDecoded) == state_ &&
           oauth::isAnswer(url);
}

std::optional<QUrl> LoopbackListener::receive() {
    std::array<epoll_event, mostVisitors + 1> events{};
    const int count = ::epoll_wait(events_.get(), events.data(), events.size(), 0);
    for (int i = 0; i < count; ++i) {
        const int ready = events[static_cast<size_t>(i)].data.fd;
        if (ready == listener_.get()) {
            admit();
            continue;
        }
        const auto visitor = std::ranges::find_if(
            visitors_, [&](const Visitor& each) { return each.connection.get() == ready; });
        if (visitor == visitors_.end())
            continue; // had to make room
        if (auto callback = hear(*visitor))
            return callback;
        if (!visitor->connection.isOpen())
            visitors_.erase(visitor);
    }
    return std::nullopt;
}

void LoopbackListener::admit() {
    FileDescriptor connection(
        ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    epoll_event event{.events = EPOLLIN, .data = {.fd = connection.get()}};
    if (!connection.isOpen() ||
        ::epoll_ctl(events_.get(), EPOLL_CTL_ADD, connection.get(), &event) != 0)
        return;
    if (visitors_.size() == mostVisitors)
        visitors_.pop_front();
    visitors_.push_back({std::move(connection), {}});
}

/// Closes the connection once the request is answered or there is none to come.
std::optional<QUrl> LoopbackListener::hear(Visitor& visitor) {
    char bytes[16384];
    const ssize_t size = ::recv(visitor.connection.get(), bytes, sizeof bytes, 0);
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return std::nullopt;
    std::optional<QUrl> callback;
    if (size > 0) {
        visitor.head.append(bytes, size);
        const bool isWhole = visitor.head.contains("\r\n\r\n");
        if (!isWhole && visitor.head.size() <= longestHead)
            return std::nullopt;
        callback = answer(visitor);
    }
    visitor.connection = {};
    return callback;
}

std::optional<QUrl> LoopbackListener::answer(const Visitor& visitor) const {
    auto url = requestedURL(visitor.head, QStringLiteral("http://127.0.0.1:%1").arg(port_));
    if (url && !isCallback(*url))
        url.reset();
    const QByteArray& text = !url ? notFound : oauth::authCode(*url) ? taken : refused;
    // Far below what the kernel buffers for a new connection, so it goes out whole or to nobody.
    ::send(visitor.connection.get(), text.constData(), static_cast<size_t>(text.size()),
           MSG_NOSIGNAL);
    return url;
}

} // namespace quorvane
