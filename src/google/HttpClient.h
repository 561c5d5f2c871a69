#pragma once

#include "foundation/Date.h"
#include "foundation/Error.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

namespace quorvane {

struct HttpRequest {
    QByteArray method = "GET";
    QUrl url;
    using Headers = std::vector<std::pair<QByteArray, QByteArray>>;
    Headers headers; ///< sent in this order
    QByteArray body;
    std::optional<std::filesystem::path> bodyFile; ///< streamed instead of `body`
    struct Range {
        std::int64_t offset = 0;
        std::int64_t size = 0;
    };
    std::optional<Range> bodyRange;        ///< of the file, bytes; none: all of it
    std::chrono::seconds timeout{60};      ///< the longest time without any data
    std::chrono::seconds answerLimit{300}; ///< from the request's last byte to the answer's last
    /// Makes something at the service: never sent a second time on the client's own account.
    bool isCreation = false;
    /// Bytes of the body sent so far and in all; called on the sending thread.
    using Progress = std::function<void(std::int64_t sent, std::int64_t total)>;
    Progress onProgress;
    /// How many bytes a second this body and all others with a rate may take together; asked again
    /// and again on the sending thread. 0, or no function: as fast as it goes.
    std::function<std::int64_t()> bodyRate;
};

struct HttpResponse {
    int status = 0;
    QByteArray body = {};
    std::optional<Date> date = {};                 ///< by the service's clock, where it says so
    std::chrono::seconds retryAfter{0};            ///< how long the service wants to be left alone
    std::map<QByteArray, QByteArray> headers = {}; ///< by name in lower case

    /// Empty when absent.
    QByteArray header(const QByteArray& lowerCaseName) const {
        const auto found = headers.find(lowerCaseName);
        return found == headers.end() ? QByteArray() : found->second;
    }
};

/// The request got no HTTP answer: no connection, no name, no trust, no data for too long.
class TransportError : public Error {
  public:
    explicit TransportError(QString description)
        : Error(std::move(description), Fault{.code = FaultCode::unreachable}) {}
};

/// Sends HTTP requests. Any thread; blocks its caller. Redirects are not followed, TLS
/// certificates are always verified, response sizes are bounded.
class HttpClient {
  public:
    virtual ~HttpClient() = default;

    /// Throws `TransportError`, `FileError` for an unreadable body file, or `Cancelled` within
    /// milliseconds of a request to `stop`.
    virtual HttpResponse send(const HttpRequest& request, std::stop_token stop) = 0;
};

} // namespace quorvane
