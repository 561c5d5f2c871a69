#include "bench/Parts.h"
#include "bench/UploadSink.h"
#include "foundation/File.h"
#include "google/CurlHttpClient.h"
#include "google/GoogleUploadTask.h"

namespace quorvane::bench {

namespace {

class AnyToken final : public AccessTokenProvider {
  public:
    QString validAccessToken(std::stop_token /*stop*/) override { return QStringLiteral("token"); }
    std::optional<QString> renewedAccessToken(const QString&, std::stop_token) override {
        return std::nullopt;
    }
};

/// A file of any size in one request, which a backup does with small ones only.
void sendAtOnce(GoogleLibraryApi& api, const std::filesystem::path& file) {
    HttpRequest request;
    request.method = "POST";
    request.url = api.at(QStringLiteral("/v1/uploads"));
    request.bodyFile = file;
    api.send(std::move(request), {});
}

} // namespace

int send(const QStringList& words) {
    CurlHttpClient http;
    AnyToken tokens;
    GoogleLibraryApi api(http, tokens, GoogleEndpoints::resolve(words[1]));
    const auto file = pathFrom(words[2]);
    UploadMemory none;
    if (words[0] == u"raw")
        sendAtOnce(api, file);
    else
        GoogleUploadTask(api).upload({.file = file, .fileName = words[2], .isMovie = true}, none,
                                     {}, {});
    return 0;
}

int sink(const QStringList& /*words*/) {
    runUploadSink();
    return 0;
}

} // namespace quorvane::bench
