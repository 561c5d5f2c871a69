#pragma once

#include "foundation/Guarded.h"
#include "google/HttpClient.h"
#include "google/UploadLimit.h"

#include <memory>
#include <vector>

namespace quorvane {

/// HTTP/1.1 over libcurl. A request runs on its caller's thread; requests of several threads run
/// side by side, and each reuses a connection that an earlier one left open. Plain HTTP is spoken
/// to this computer only.
class CurlHttpClient final : public HttpClient {
  public:
    /// A response body of more than `largestResponse` bytes is refused with a `TransportError`.
    explicit CurlHttpClient(std::int64_t largestResponse = std::int64_t(64) << 20);
    ~CurlHttpClient() override;

    HttpResponse send(const HttpRequest& request, std::stop_token stop) override;

  private:
    class Lane;

    std::unique_ptr<Lane> takeLane();
    void giveBack(std::unique_ptr<Lane> lane);

    const std::int64_t largestResponse_;
    UploadLimit limit_;
    Guarded<std::vector<std::unique_ptr<Lane>>> idleLanes_;
};

} // namespace quorvane
