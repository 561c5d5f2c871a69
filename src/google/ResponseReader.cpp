#include "google/ResponseReader.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

#include <algorithm>

namespace quorvane {

namespace {

constexpr std::int64_t largestHeader = 1 << 20;
constexpr std::chrono::seconds longestWait = std::chrono::hours(24); // that a service may ask for

/// The one date format that services may generate (RFC 9110, section 5.6.7).
std::optional<Date> dateIn(const QByteArray& text) {
    QDateTime date = QLocale::c().toDateTime(QString::fromLatin1(text),
                                             QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'"));
    if (!date.isValid())
        return std::nullopt;
    date.setTimeZone(QTimeZone::utc());
    return Date(std::chrono::milliseconds(date.toMSecsSinceEpoch()));
}

/// Retry-After (RFC 9110, section 10.2.3): seconds, or a date by the service's clock.
std::chrono::seconds waitIn(const QByteArray& text, std::optional<Date> serviceTime) {
    bool isNumber = false;
    const qint64 seconds = text.toLongLong(&isNumber);
    std::chrono::seconds wait(0);
    if (isNumber)
        wait = std::chrono::seconds(std::min<qint64>(seconds, longestWait.count()));
    else if (const auto until = dateIn(text))
        wait = std::chrono::ceil<std::chrono::seconds>(
            *until - serviceTime.value_or(std::chrono::time_point_cast<Date::duration>(
                         std::chrono::system_clock::now())));
    return std::clamp(wait, std::chrono::seconds(0), longestWait);
}

} // namespace

bool ResponseReader::takeBody(QByteArrayView bytes) {
    tooLarge_ = response_.body.size() + bytes.size() > largestBody_;
    if (!tooLarge_)
        response_.body.append(bytes);
    return !tooLarge_;
}

bool ResponseReader::takeHeaderLine(QByteArrayView line) {
    headerBytes_ += line.size();
    tooLarge_ = headerBytes_ > largestHeader;
    if (const qsizetype colon = line.indexOf(':'); colon > 0) {
        const QByteArray name = line.first(colon).toByteArray().toLower();
        response_.headers[name] = line.sliced(colon + 1).trimmed().toByteArray();
    }
    return !tooLarge_;
}

HttpResponse ResponseReader::finish(int status) {
    response_.status = status;
    response_.date = dateIn(response_.header("date"));
    response_.retryAfter = waitIn(response_.header("retry-after"), response_.date);
    return std::move(response_);
}

} // namespace quorvane
