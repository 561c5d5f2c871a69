#include "store/UploadSessions.h"

#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane {

TEST(UploadSessions, AreGoodForTheSameBytesAndAccountOnly) {
    using namespace Qt::StringLiterals;
    const test::TemporaryFolder folder;
    Console console{Console::Channel::silent};
    DatabaseManager database(folder / "state.sqlite", console);
    test::FakeClock clock;
    UploadSessions sessions(database, clock, u"1"_s);
    UploadSessions others(database, clock, u"2"_s);
    SyncRecord record;
    record.assetLocalIdentifier = u"A"_s;
    SyncRecord another;
    another.assetLocalIdentifier = u"B"_s;
    const UploadSessions::Bytes bytes{u"hash"_s, 5};
    const auto found = [&] { return sessions.find(record, bytes); };

    sessions.keep(record, bytes, u"address"_s);
    EXPECT_EQ(found(), u"address"_s);
    EXPECT_EQ(others.find(record, bytes), std::nullopt);
    EXPECT_EQ(sessions.find(record, {u"hash"_s, 6}), std::nullopt);
    EXPECT_EQ(sessions.find(record, {u"other"_s, 5}), std::nullopt);
    EXPECT_EQ(sessions.find(another, bytes), std::nullopt);
    sessions.forgetExpired();
    EXPECT_TRUE(found());
    clock.advance(UploadSessions::lifetime);
    EXPECT_EQ(found(), std::nullopt);
    sessions.keep(record, bytes, u"new"_s);
    sessions.forget(record);
    EXPECT_EQ(found(), std::nullopt);
}

} // namespace quorvane
