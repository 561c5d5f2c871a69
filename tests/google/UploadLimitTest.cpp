#include "google/UploadLimit.h"

#include "google/CurlHttpClient.h"
#include "google/RawServer.h"

#include <gtest/gtest.h>

#include <future>

namespace quorvane {

TEST(UploadLimit, IsKeptByTwoWhoAskInTurnAndAlsoLate) {
    using namespace std::chrono_literals;
    for (const std::int64_t rate : {1'000, 250'000, 80'000'000})
        for (const auto late : {0ms, 15ms}) {
            UploadLimit limit;
            const UploadLimit::Steady::time_point begin(1h);
            std::int64_t sent = 0;
            for (auto now = begin; now < begin + 20s;) {
                const auto first = limit.take(1 << 20, rate, now);
                const auto second = limit.take(1 << 20, rate, now);
                sent += static_cast<std::int64_t>(first.bytes + second.bytes);
                now += std::max(first.wait, second.wait) + late;
            }
            EXPECT_NEAR(double(sent), 20.0 * double(rate), rate) << rate;
        }
    EXPECT_EQ(UploadLimit().take(1 << 20, 0, {}).bytes, std::size_t(1) << 20);
}

TEST(UploadLimit, HoldsForAllBodiesOfAClientTogether) {
    constexpr qsizetype size = 200'000;
    test::RawServer server([](test::Peer& peer) {
        const QByteArray head = peer.receive();
        peer.drain(size - (head.size() - head.indexOf("\r\n\r\n") - 4));
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    });
    CurlHttpClient client;
    HttpRequest request;
    request.method = "POST";
    request.url = server.url();
    request.body = QByteArray(size, 'x');
    request.bodyRate = [] { return 500'000; };
    const auto begin = std::chrono::steady_clock::now();
    const auto send = [&] { return client.send(request, {}).status; };
    auto other = std::async(std::launch::async, send);
    EXPECT_EQ(send(), 200);
    EXPECT_EQ(other.get(), 200);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    EXPECT_GT(seconds.count(), 0.65) << "0.8 without what may be caught up on";
}

} // namespace quorvane
