#pragma once

#include "google/AccessTokenProvider.h"
#include "google/GoogleEndpoints.h"
#include "google/HttpClient.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <mutex>

namespace quorvane::test {

/// The statuses by which Google refuses.
inline constexpr int refusals[] = {401, 403, 404, 408, 413, 429, 500, 503};

inline GoogleEndpoints loopbackEndpoints() {
    return GoogleEndpoints::resolve(QStringLiteral("http://127.0.0.1:9"));
}

class FixedToken final : public AccessTokenProvider {
  public:
    QString validAccessToken(std::stop_token /*stop*/) override {
        if (failure)
            throw Error(*failure);
        return token;
    }
    std::optional<QString> renewedAccessToken(const QString& /*refused*/,
                                              std::stop_token /*stop*/) override {
        return renewed;
    }
    QString token = QStringLiteral("ya29.test");
    std::optional<QString> renewed;
    std::optional<QString> failure;
};

/// Answers every request by `answer`, outside its lock, and keeps the requests. Any thread.
class ScriptedHttp final : public HttpClient {
  public:
    std::function<HttpResponse(const HttpRequest&, std::stop_token)> answer;

    HttpResponse send(const HttpRequest& request, std::stop_token stop) override {
        {
            const std::lock_guard lock(mutex_);
            requests_.push_back(request);
        }
        return answer(request, std::move(stop));
    }

    void answerAlways(int status, const QByteArray& body) {
        answer = [=](const HttpRequest&, const std::stop_token&) {
            return HttpResponse{status, body};
        };
    }

    std::vector<HttpRequest> requests() const {
        const std::lock_guard lock(mutex_);
        return requests_;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<HttpRequest> requests_;
};

inline QJsonObject jsonOf(const QByteArray& text) {
    return QJsonDocument::fromJson(text).object();
}

} // namespace quorvane::test
