#include "emulator/GoogleEmulator.h"
#include "google/CurlHttpClient.h"
#include "google/GoogleErrors.h"
#include "google/GoogleUploadTask.h"
#include "google/ScriptedHttp.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <numeric>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;
using emulator::RequestKind;

constexpr std::int64_t piece = std::int64_t(32) << 20;
constexpr std::int64_t size = 2 * piece + 12'345;

struct Memory final : UploadMemory {
    std::optional<QString> address() override { return kept; }
    void remember(const QString& address) override { kept = address; }
    void forget() override { kept.reset(); }
    std::optional<QString> kept;
};

struct ResumableUploads : testing::Test {
    test::TemporaryFolder folder;
    GoogleEmulator google;
    CurlHttpClient http;
    test::FixedToken tokens;
    std::optional<GoogleLibraryApi> api;
    UploadSource source{folder.write("A_film.mov", ""), u"film.mov"_s, true};
    Memory memory;
    std::int64_t progress = 0;

    ResumableUploads() {
        google.start();
        std::filesystem::resize_file(source.file, size);
        tokens.token = google.issueTokens().accessToken;
        api.emplace(http, tokens, GoogleEndpoints::resolve(google.baseURL()));
    }

    QString send() {
        const auto follow = [&](std::int64_t sent, std::int64_t total) {
            EXPECT_LE(sent, total);
            progress = sent;
        };
        return GoogleUploadTask(*api).upload(source, memory, follow, {});
    }
    void drop(int nth, std::int64_t after) {
        google.addDisturbance({.kind = RequestKind::upload, .nth = nth, .dropRequestAfter = after});
    }
    std::int64_t bytesSent() const {
        const auto requests = google.requests(RequestKind::upload);
        return std::accumulate(
            requests.begin(), requests.end(), std::int64_t(0),
            [](std::int64_t sum, const auto& each) { return sum + each.bodySize; });
    }
    std::optional<FaultCode> faultOfSending() {
        try {
            send();
        } catch (const Error& error) {
            return error.fault().value().code;
        }
        return std::nullopt;
    }
};

} // namespace

TEST_F(ResumableUploads, ABrokenPieceGoesOnAndAnEndedProgramToo) {
    drop(2, piece / 2); // of the first piece; the query after it comes through
    EXPECT_FALSE(send().isEmpty());
    EXPECT_EQ(progress, size);
    EXPECT_EQ(memory.kept, std::nullopt);
    EXPECT_LE(bytesSent(), size + (256 << 10));

    google.clearRequests();
    google.clearDisturbances();
    drop(3, piece / 2);
    google.addDisturbance({.kind = RequestKind::upload, .nth = 4, .status = 503});
    EXPECT_EQ(faultOfSending(), FaultCode::serviceBusy);
    EXPECT_TRUE(memory.kept);
    EXPECT_FALSE(send().isEmpty());
    EXPECT_LE(bytesSent(), size + (256 << 10));
    const auto requests = google.requests(RequestKind::upload);
    EXPECT_EQ(requests.front().header("X-Goog-Upload-Raw-Size"), QByteArray::number(qint64(size)));
    EXPECT_EQ(requests.front().header("X-Goog-Upload-File-Name"), "film.mov");
    EXPECT_EQ(requests.back().header("X-Goog-Upload-Command"), "upload, finalize");
}

TEST_F(ResumableUploads, WhatGoogleForgotBeginsAnewOnce) {
    memory.kept = google.baseURL() + u"/v1/uploads?upload_id=old"_s;
    EXPECT_FALSE(send().isEmpty());
    google.addDisturbance({.kind = RequestKind::upload, .nth = 2, .times = 0, .status = 404});
    EXPECT_EQ(faultOfSending(), FaultCode::itemRefused);
    EXPECT_EQ(memory.kept, std::nullopt);
    memory.kept = u"https://example.com/v1/uploads?upload_id=elsewhere"_s;
    google.clearDisturbances();
    EXPECT_FALSE(send().isEmpty()) << "and tells no stranger the token";
}

TEST_F(ResumableUploads, WhatIsTooLargeIsRefusedBeforeAByteIsSent) {
    for (const auto& [isMovie, largest] : {std::pair{false, GoogleUploadTask::largestPicture},
                                           {true, GoogleUploadTask::largestMovie}}) {
        source.isMovie = isMovie;
        std::filesystem::resize_file(source.file, largest + 1);
        EXPECT_EQ(faultOfSending(), FaultCode::tooLarge);
    }
    EXPECT_EQ(google.requestCount(RequestKind::upload), 0);
}

} // namespace quorvane
