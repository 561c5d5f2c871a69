#include "emulator/Exchange.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

#include <algorithm>

namespace quorvane::emulator {

namespace {

constexpr qsizetype longestChunkLine = 4096;

std::optional<std::int64_t> numberFrom(const QByteArray& text, int base) {
    bool isNumber = false;
    const qint64 value = text.trimmed().toLongLong(&isNumber, base);
    return isNumber && value >= 0 ? std::optional<std::int64_t>(value) : std::nullopt;
}

/// RFC 9110, section 5.6.7.
QByteArray httpDate(Date date) {
    const auto utc =
        QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count(), QTimeZone::utc());
    return QLocale::c().toString(utc, QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'")).toLatin1();
}

} // namespace

Exchange::Exchange(Connection& connection, RecordedRequest head, int minorVersion)
    : connection_(connection),
      head_(std::move(head)),
      isChunked_(head_.header("Transfer-Encoding").toLower() == "chunked"),
      length_(numberFrom(head_.header("Content-Length"), 10)),
      hasUnreadBody_(isChunked_ || length_.value_or(0) > 0 || !isBodyDelimited()),
      isKept_(minorVersion > 0 && head_.header("Connection").toLower() != "close") {}

bool Exchange::isBodyDelimited() const {
    static const QByteArrayList withBody{"POST", "PUT", "PATCH", "DELETE"};
    return isChunked_ || length_ || !withBody.contains(head_.method);
}

bool Exchange::readBody(const Receive& receive) {
    if (!hasUnreadBody_)
        return true;
    if (head_.header("Expect").toLower() == "100-continue")
        connection_.write("HTTP/1.1 100 Continue\r\n\r\n");
    hasUnreadBody_ = !(isChunked_ ? readChunks(receive) : readPiece(length_.value_or(0), receive));
    return !hasUnreadBody_;
}

bool Exchange::readPiece(std::int64_t size, const Receive& receive) {
    while (size > 0) {
        QByteArrayView bytes = connection_.peek();
        bytes = bytes.first(std::min<qsizetype>(bytes.size(), size));
        if (bytes.isEmpty() || !receive(bytes))
            return false;
        connection_.consume(bytes.size());
        size -= bytes.size();
    }
    return true;
}

bool Exchange::readChunks(const Receive& receive) {
    const auto readLine = [this] { return connection_.readUntil("\r\n", longestChunkLine); };
    while (const auto line = readLine()) {
        const auto size = numberFrom(line->split(';').first(), 16);
        if (!size)
            return false;
        if (*size > 0) {
            if (!readPiece(*size, receive) || readLine() != QByteArray())
                return false;
            continue;
        }
        auto trailer = readLine();
        while (trailer && !trailer->isEmpty())
            trailer = readLine();
        return trailer.has_value();
    }
    return false;
}

void Exchange::drop() {
    isKept_ = false;
    connection_.end();
}

void Exchange::answer(const Answer& answer, std::optional<std::int64_t> bodyLimit) {
    // One byte more is announced than there is, so that the end is never taken for a whole answer.
    const qsizetype announced = answer.body.size() + (bodyLimit ? 1 : 0);
    isKept_ = isKept_ && !bodyLimit && !hasUnreadBody_;
    QByteArray text = "HTTP/1.1 " + QByteArray::number(answer.status) +
                      " \r\nContent-Length: " + QByteArray::number(announced) + "\r\n";
    if (!answer.contentType.isEmpty())
        text += "Content-Type: " + answer.contentType + "\r\n";
    if (answer.date)
        text += "Date: " + httpDate(*answer.date) + "\r\n";
    for (const auto& [name, value] : answer.headers)
        text += name + ": " + value + "\r\n";
    if (!isKept_)
        text += "Connection: close\r\n";
    text += "\r\n";
    if (head_.method != "HEAD")
        text += answer.body.first(std::clamp<qsizetype>(
            static_cast<qsizetype>(bodyLimit.value_or(answer.body.size())), 0, answer.body.size()));
    isKept_ = connection_.write(text) && isKept_;
}

} // namespace quorvane::emulator
