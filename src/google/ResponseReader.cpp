#include "google/ResponseReader.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace quorvane {

namespace {

constexpr std::int64_t largestHeader = 1 << 20;
constexpr std::chrono::seconds longestWait = std::chrono::hours(24); // that a service may ask for

/// The one date format that services may generate (RFC 9110, section 5.6.7), as in
/// "Sun, 06 Nov 1994 08:49:37 GMT". Every answer has one, so no general reader of dates.
std::optional<Date> dateIn(const QByteArray& text) {
    int day = 0, year = 0, hour = 0, minute = 0, second = 0;
    std::array<char, 4> name{};
    // NOLINTNEXTLINE(cert-err34-c): the widths keep every number small
    if (std::sscanf(text.constData(), "%*3s, %2d %3s %4d %2d:%2d:%2d GMT", &day, name.data(), &year,
                    &hour, &minute, &second) != 6)
        return std::nullopt;
    const auto month = std::string_view("JanFebMarAprMayJunJulAugSepOctNovDec").find(name.data());
    const std::chrono::year_month_day date =
        std::chrono::year(year) / static_cast<int>(month / 3 + 1) / day;
    if (month == std::string_view::npos || month % 3 != 0 || !date.ok())
        return std::nullopt;
    return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
           std::chrono::seconds(second);
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
