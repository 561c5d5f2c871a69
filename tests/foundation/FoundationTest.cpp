#include "foundation/ByteReader.h"
#include "foundation/Clock.h"
#include "foundation/Console.h"
#include "foundation/Crypto.h"
#include "foundation/Date.h"
#include "foundation/File.h"
#include "foundation/Publisher.h"
#include "support/Failures.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

namespace quorvane {
namespace {

using namespace Qt::StringLiterals;

TEST(ByteReader, readsWithinItsRangeAndNowhereElse) {
    const std::uint8_t bytes[] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};
    ByteReader big(bytes);
    EXPECT_EQ(big.u16(), 0x0102);
    EXPECT_EQ(big.unsignedOf(0), 0U);
    EXPECT_EQ(big.unsignedOf(3), 0x030405U);
    EXPECT_THROW(big.u32(), ParseError);
    EXPECT_EQ(big.offset(), 5U) << "a refused read does not move the cursor";
    EXPECT_THROW(big.take(UINT64_MAX), ParseError);
    EXPECT_THROW(big.seek(9), ParseError);
    EXPECT_EQ(ByteReader(bytes, ByteOrder::littleEndian).u32(), 0x04030201U);
    EXPECT_EQ(ByteReader(bytes).u64(), 0x0102030405060708ULL);
}

TEST(Date, absurdNumbersAreNoDateAndNeverOverflow) {
    for (const double absurd : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, -1e18})
        EXPECT_EQ(dateFromUnixSeconds(absurd), std::nullopt) << absurd;
    EXPECT_EQ(dateFromUnixSeconds(1617187200.123), Date(std::chrono::milliseconds(1617187200123)));
    EXPECT_TRUE(dateFromUnixSeconds(123456789012345 + referenceDateOffset).has_value());
    EXPECT_EQ(describe(Date(std::chrono::seconds(1583364600))),
              QStringLiteral("2020-03-04 23:30:00 +0000"));
}

TEST(Crypto, digestsMatchThePublishedVectors) {
    EXPECT_EQ(Sha256::digest("").toHex(),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    Sha256 hash;
    hash.add("a");
    hash.add("bc");
    EXPECT_EQ(hash.finish().toHex(),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_NE(secureRandomBytes(16), secureRandomBytes(16));
}

TEST(File, replacingIsWholeAndLeavesNoTemporary) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("a", "old");
    replaceFile(file, "new", 0600);
    EXPECT_EQ(test::readFile(file), "new");
    EXPECT_THROW(replaceFile(folder / "missing/a", "x"), FileError);
    std::filesystem::create_directory(folder / "taken");
    EXPECT_THROW(replaceFile(folder / "taken", "x"), FileError); // a folder stands there
    EXPECT_EQ(test::entriesIn(folder.path()), 2);
    EXPECT_THROW(readWholeFile(file, 2), FileError);
    EXPECT_THROW(readWholeFile(folder.path(), 100), FileError);
}

TEST(File, errorsNameThePathAndTheReason) {
    EXPECT_EQ(test::messageOf([] { openFile("/nowhere/x", O_RDONLY); }),
              u"Dosya açılamadı: /nowhere/x (bulunamadı)");
}

TEST(Console, aCalmTerminalShowsWhatNeedsAPersonAndNoMoreThanOneReads) {
    int terminal = -1;
    int behind = -1;
    ASSERT_EQ(::openpty(&terminal, &behind, nullptr, nullptr, nullptr), 0);
    const int output = ::dup(STDOUT_FILENO);
    ::dup2(behind, STDOUT_FILENO);
    {
        Console console;
        console.print(u"before"_s);
        console.setCalm(true);
        console.print(u"step"_s);
        for (int i = 0; i < 30; ++i)
            console.notice(u"notice"_s);
        console.result(u"after"_s);
    }
    ::dup2(output, STDOUT_FILENO);
    QByteArray seen;
    pollfd ready{terminal, POLLIN, 0};
    while (!seen.endsWith("after\r\n") && ::poll(&ready, 1, 5000) > 0) { // it comes in pieces
        std::array<char, 4096> piece{};
        seen.append(piece.data(), ::read(terminal, piece.data(), piece.size()));
    }
    for (const int descriptor : {terminal, behind, output})
        ::close(descriptor);
    EXPECT_TRUE(seen.startsWith("before\r\nnotice") && seen.endsWith("after\r\n"))
        << seen.toStdString();
    EXPECT_EQ(seen.count("notice"), 20);
    EXPECT_EQ(seen.count('\n'), 23) << "and one line says that there are more";
}

TEST(Clock, aSleepEndsWithItsTimeOrWithAStop) {
    SystemClock clock;
    EXPECT_TRUE(clock.sleep(std::chrono::milliseconds(1), {}));
    std::stop_source stop;
    const auto started = clock.monotonic();
    std::jthread stopper([&] { stop.request_stop(); });
    EXPECT_FALSE(clock.sleep(std::chrono::minutes(5), stop.get_token()));
    EXPECT_LT(clock.monotonic() - started, std::chrono::seconds(5));
}

TEST(Publisher, sendsOnlyToThoseSubscribedAtTheMoment) {
    Publisher<int> publisher;
    int sum = 0;
    publisher.send(1);
    {
        const Subscription subscription = publisher.subscribe([&](int value) { sum += value; });
        publisher.send(10);
        const Subscription second = publisher.subscribe([&](int value) {
            Publisher<int>& again = publisher; // a subscriber may use the publisher
            if (value == 100)
                again.send(1000);
        });
        publisher.send(100);
    }
    publisher.send(10000);
    EXPECT_EQ(sum, 1110);
}

} // namespace
} // namespace quorvane
