#include "google/GoogleFaults.h"
#include "google/GoogleMediaItems.h"
#include "google/OAuthMessages.h"
#include "google/ResponseReader.h"

#include <cstdlib>

using namespace quorvane;

namespace {

class AnyToken final : public AccessTokenProvider {
  public:
    QString validAccessToken(std::stop_token /*stop*/) override { return QStringLiteral("token"); }
    std::optional<QString> renewedAccessToken(const QString&, std::stop_token) override {
        return std::nullopt;
    }
};

/// Answers every request alike.
class OneAnswer final : public HttpClient {
  public:
    explicit OneAnswer(HttpResponse answer) : answer_(std::move(answer)) {}
    HttpResponse send(const HttpRequest&, std::stop_token) override { return answer_; }

  private:
    const HttpResponse answer_;
};

/// A status, header lines, and after an empty line the body.
HttpResponse answerFrom(QByteArrayView bytes) {
    const int statuses[] = {200, 400, 401, 403, 404, 429, 500, 503};
    const int status = bytes.isEmpty() ? 200 : statuses[static_cast<unsigned char>(bytes[0]) % 8];
    const QByteArray text = bytes.toByteArray().mid(1);
    const qsizetype end = text.indexOf("\n\n");
    ResponseReader reader(1 << 20);
    for (const QByteArray& line : text.left(std::max<qsizetype>(end, 0)).split('\n'))
        reader.takeHeaderLine(line);
    reader.takeBody(text.mid(end < 0 ? 0 : end + 2));
    return reader.finish(status);
}

template <typename Work>
void attempt(Work&& work) {
    try {
        work();
    } catch (const Error&) { // refused
    }
}

} // namespace

/// Whatever a service answers: each thing that was asked for gets an answer of its own or an error
/// of ours, an item counts only with an identifier, and no token gets into the log.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const HttpResponse answer = answerFrom({data, static_cast<qsizetype>(size)});
    OneAnswer http(answer);
    AnyToken tokens;
    GoogleLibraryApi api(http, tokens, GoogleEndpoints::resolve(std::nullopt));
    GoogleMediaItems items(api);
    attempt([&] {
        const auto results = items.batchCreate({{QStringLiteral("t1"), QStringLiteral("a.jpg")},
                                                {QStringLiteral("t2"), QStringLiteral("b.jpg")}},
                                               std::nullopt, {});
        if (results.size() != 2)
            std::abort();
    });
    attempt([&] {
        const QStringList ids{QStringLiteral("A"), QStringLiteral("B")};
        if (const auto there = items.batchGet(ids, {}))
            for (const QString& id : *there)
                if (!ids.contains(id))
                    std::abort();
    });
    faultIn(answer);
    tokenFaultIn(answer);
    oauth::grantIn(answer.body);
    oauth::loggable(answer.body);
    return 0;
}
