#pragma once

#include "emulator/GoogleEmulator.h"
#include "support/Fakes.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <httplib.h>

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace emulator;
using namespace Qt::StringLiterals;

inline const QByteArray jpeg("\xFF\xD8\xFF\xE0 a picture");
inline const QByteArray movie("\0\0\0\x14"
                              "ftypqt  a movie",
                              19);

/// A running service with a client that has just signed in.
struct EmulatorWorld : testing::Test {
    void begin(EmulatorOptions options = {}) {
        emulator = std::make_unique<GoogleEmulator>(options, clock);
        emulator->start();
        client = std::make_unique<httplib::Client>("127.0.0.1", emulator->port());
        token = emulator->issueTokens().accessToken;
    }
    void SetUp() override { begin(); }

    httplib::Headers bearer() const { return {{"Authorization", "Bearer " + token.toStdString()}}; }

    httplib::Headers uploadHeaders(const std::string& type = "image/jpeg") const {
        httplib::Headers headers = bearer();
        headers.emplace("X-Goog-Upload-Content-Type", type);
        headers.emplace("X-Goog-Upload-Protocol", "raw");
        return headers;
    }

    httplib::Result upload(const QByteArray& bytes, const std::string& type = "image/jpeg") {
        return client->Post("/v1/uploads", uploadHeaders(type), bytes.toStdString(),
                            "application/octet-stream");
    }
    QString uploadToken(const QByteArray& bytes, const std::string& type = "image/jpeg") {
        const auto result = upload(bytes, type);
        return result && result->status == 200 ? QString::fromStdString(result->body) : QString();
    }

    httplib::Result post(const std::string& path, const QJsonObject& body) {
        return client->Post(path, bearer(), QJsonDocument(body).toJson().toStdString(),
                            "application/json");
    }
    static QJsonObject batch(const QStringList& tokens, const QString& albumId = {}) {
        QJsonArray items;
        for (const QString& each : tokens)
            items.append(
                QJsonObject{{u"simpleMediaItem"_s, QJsonObject{{u"uploadToken"_s, each}}}});
        QJsonObject body{{u"newMediaItems"_s, items}};
        if (!albumId.isEmpty())
            body.insert(u"albumId"_s, albumId);
        return body;
    }
    httplib::Result create(const QStringList& tokens, const QString& albumId = {}) {
        return post("/v1/mediaItems:batchCreate", batch(tokens, albumId));
    }

    FakeClock clock;
    std::unique_ptr<GoogleEmulator> emulator;
    std::unique_ptr<httplib::Client> client;
    QString token;
};

inline QJsonObject json(const httplib::Result& result) {
    return result ? QJsonDocument::fromJson(QByteArray::fromStdString(result->body)).object()
                  : QJsonObject();
}

inline int statusOf(const httplib::Result& result) {
    return result ? result->status : 0;
}

} // namespace quorvane::test
