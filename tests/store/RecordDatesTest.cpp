#include "store/RecordDates.h"

#include "store/RecordLife.h"
#include "store/StoreCounts.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane {

using namespace std::chrono_literals;

namespace {

const Date taken{std::chrono::milliseconds(1'556'879'445'000)};

} // namespace

TEST(RecordDates, AMinuteIsWrongUnlessAZoneExplainsIt) {
    for (const auto& [apart, isWrong] : {std::pair<std::chrono::seconds, bool>{0s, false},
                                         {60s, false},
                                         {61s, true},
                                         {3h, false},
                                         {-5h - 45min + 30s, false},
                                         {3h + 2min, true},
                                         {26h, false},
                                         {27h, true},
                                         {24h * 365, true}}) {
        EXPECT_EQ(isMisdated(taken, taken + apart), isWrong) << apart.count();
        EXPECT_EQ(isMisdated(taken + apart, taken), isWrong) << apart.count();
    }
}

TEST(RecordDates, AnItemFiledElsewhereIsCountedUntilItIsFiledRight) {
    using namespace Qt::StringLiterals;
    const test::TemporaryFolder folder;
    Console console{Console::Channel::silent};
    DatabaseManager database(folder / "state.sqlite", console);
    RecordLife life(database, {});
    RecordDates dates(database);
    SyncRecord record;
    record.assetLocalIdentifier = u"A"_s;
    record.syncStatus = SyncStatus::staged;
    database.upsertRecord(record);
    dates.setDate(u"A"_s, {taken, u"library"_s});
    ASSERT_TRUE(life.created(record, u"token"_s, u"id"_s, taken + 48h));
    ASSERT_EQ(dates.misdated().size(), 1U);
    EXPECT_EQ(dates.misdated()[0].theirs, taken + 48h);
    EXPECT_EQ(StoreCounts::of(database).misdated, 1);
    dates.compare(u"A"_s, taken + 2h);
    EXPECT_TRUE(dates.misdated().empty());
}

} // namespace quorvane
