#include "store/StateCatalogue.h"

#include "store/KnownContents.h"
#include "store/StateFacts.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

const AccountIdentity me{u"1"_s, u"me"_s};
const AccountIdentity meByMail{{}, u"me"_s};
const AccountIdentity other{u"2"_s, u"other"_s};
const AccountIdentity nobody;

class StateCatalogueTest : public testing::Test {
  protected:
    /// As the first VERIFIED does.
    void bind(const StatePlace& place, const AccountIdentity& account) {
        DatabaseManager database(place.database, console);
        StateFacts(database).bindAccount(account);
    }
    /// An original in the state of `place`.
    void remember(const StatePlace& place, const char* name, SyncStatus status,
                  const char* sha256) {
        DatabaseManager database(place.database, console);
        SyncRecord record;
        record.assetLocalIdentifier = QString::fromLatin1(name);
        record.syncStatus = status;
        if (status != SyncStatus::staged)
            record.remoteMediaID = QString::fromLatin1(name) + u"-remote"_s;
        database.upsertRecord(record);
        RecordLife(database).exporting(record, {QString::fromLatin1(sha256), {7, 0, 0, 0}, 7});
    }

    TemporaryFolder folder;
    UserFolders folders{folder.path(), folder / "Pictures", folder / "temporary/QuorvaneStaging"};
    StateCatalogue catalogue{folders};
    Console console{Console::Channel::silent};
};

} // namespace

TEST_F(StateCatalogueTest, EachLibraryAndAccountHasAStateOfItsOwn) {
    EXPECT_EQ(catalogue.find(u"A"_s, me), std::nullopt);
    const StatePlace a = catalogue.open(u"A"_s, nobody);
    EXPECT_EQ(
        a, (StatePlace{folders.database(), folders.permanentStaging(), folders.temporaryStaging}));
    const StatePlace b = catalogue.open(u"B"_s, nobody);
    bind(a, me);
    const StatePlace aOfOther = catalogue.open(u"A"_s, other);
    bind(aOfOther, other);
    const StatePlace aOfNobody = catalogue.open(u"A"_s, nobody);
    std::set<std::filesystem::path> places;
    for (const StatePlace& place : {a, b, aOfOther, aOfNobody})
        places.insert({place.database, place.permanentStaging, place.temporaryStaging});
    EXPECT_EQ(places.size(), 12U) << "nothing is shared";

    const struct {
        QString library;
        AccountIdentity account;
        StatePlace expected;
    } comingBack[] = {
        {u"A"_s, me, a}, {u"A"_s, meByMail, a},     {u"B"_s, nobody, b},
        {u"B"_s, me, b}, {u"A"_s, other, aOfOther}, {u"A"_s, nobody, aOfNobody},
    };
    for (const auto& each : comingBack) {
        EXPECT_EQ(catalogue.find(each.library, each.account), each.expected);
        EXPECT_EQ(catalogue.open(each.library, each.account), each.expected);
    }
    EXPECT_EQ(catalogue.othersOf(me, b), std::vector{a.database});

    const auto always = [](bool holds) { return [holds](const auto&) { return holds; }; };
    EXPECT_EQ(catalogue.identityAt(u"path:/card"_s, always(false)), u"path:/card"_s);
    EXPECT_EQ(catalogue.identityAt(u"B"_s, always(true)), u"B"_s);
    const QString second = catalogue.identityAt(u"B"_s, always(false));
    EXPECT_TRUE(second.startsWith(u"B#"_s)) << "other pictures at the same place";
    EXPECT_TRUE(catalogue.othersOf(nobody, b).empty());
}

TEST_F(StateCatalogueTest, LookingFindsTheOnlyStateOfALibraryAndMakesNone) {
    const StatePlace a = catalogue.open(u"A"_s, me);
    bind(a, me);
    EXPECT_EQ(catalogue.find(u"A"_s, nobody), a);
    EXPECT_EQ(catalogue.find(u"A"_s, other), std::nullopt);
    EXPECT_EQ(catalogue.find(u"B"_s, me), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(folders.applicationSupport() / "libraries"));
}

TEST_F(StateCatalogueTest, AStateFromBeforeLibrariesWereToldApartGoesToTheFirstThatOpensIt) {
    remember(catalogue.first(), "old", SyncStatus::verified, "ab");
    EXPECT_EQ(catalogue.open(u"A"_s, me), catalogue.first());
    EXPECT_NE(catalogue.open(u"B"_s, me), catalogue.first());
}

TEST_F(StateCatalogueTest, NothingTakesThePlaceOfADamagedState) {
    const QByteArray garbage(8192, 'x');
    std::filesystem::create_directories(folders.applicationSupport());
    replaceFile(folders.database(), garbage);
    for (const QString& library : {u"A"_s, u"B"_s}) {
        EXPECT_THROW(catalogue.open(library, me), Error);
        EXPECT_THROW(catalogue.find(library, nobody), Error);
    }
    EXPECT_EQ(readFile(folders.database()), garbage);
    EXPECT_FALSE(std::filesystem::exists(folders.applicationSupport() / "libraries"));
}

TEST_F(StateCatalogueTest, ProcessesThatChooseAtOnceAgree) {
    std::vector<StatePlace> places(8);
    {
        std::vector<std::jthread> processes;
        for (std::size_t i = 0; i < places.size(); ++i)
            processes.emplace_back([&, i] {
                places[i] = StateCatalogue(folders).open(i % 2 == 0 ? u"A"_s : u"B"_s, me);
            });
    }
    for (std::size_t i = 2; i < places.size(); ++i)
        EXPECT_EQ(places[i], places[i - 2]);
    EXPECT_NE(places[0], places[1]);
    EXPECT_TRUE(places[0] == catalogue.first() || places[1] == catalogue.first());
}

TEST_F(StateCatalogueTest, TheSameBytesAreKnownFromAllStatesOfTheAccount) {
    const StatePlace a = catalogue.open(u"A"_s, me);
    const StatePlace b = catalogue.open(u"B"_s, me);
    bind(a, me);
    bind(b, me);
    remember(a, "sent", SyncStatus::verified, "1");
    remember(a, "gone", SyncStatus::deletedLocally, "2");
    remember(a, "failed", SyncStatus::failed, "3");
    remember(a, "staged", SyncStatus::staged, "4");
    remember(b, "here", SyncStatus::verified, "1");
    remember(b, "waiting", SyncStatus::staged, "5");
    auto files = catalogue.othersOf(me, b);
    files.push_back(folder.write("garbage.sqlite", QByteArray(8192, 'x')));
    files.push_back(folder / "absent.sqlite");
    DatabaseManager own(b.database, console);
    KnownContents known(own, files);
    EXPECT_TRUE(known.hasSample(7));
    EXPECT_FALSE(known.hasSample(8));
    const struct {
        const char* sha256;
        const char* asset;
        QStringList remoteIDs;
        bool isUnderWay;
    } cases[] = {
        {"1", "new", {u"here-remote"_s, u"sent-remote"_s}, false},
        {"2", "new", {u"gone-remote"_s}, false},
        {"3", "new", {}, false},
        {"4", "new", {}, false}, // the other library is not open: nobody sends it
        {"5", "new", {}, true},
        {"5", "waiting", {}, false},
        {"6", "new", {}, false},
    };
    for (const auto& each : cases) {
        const auto found =
            known.find(7, QString::fromLatin1(each.sha256), QString::fromLatin1(each.asset));
        EXPECT_EQ(found.remoteIDs, each.remoteIDs) << each.sha256;
        EXPECT_EQ(found.isUnderWay, each.isUnderWay) << each.sha256;
    }
    EXPECT_TRUE(known.find(8, u"1"_s, u"new"_s).remoteIDs.isEmpty());
}

} // namespace quorvane::test
