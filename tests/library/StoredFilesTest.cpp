#include "World.h"

#include "library/StoredFiles.h"

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

KnownFile file(const char* path, int number, std::int64_t size) {
    return {path, QUuid(assetID(number).section(u'/', 0, 0)), {size, 1, 2, 3}};
}

} // namespace

TEST(StoredFiles, AVersionThatIsGoneLeavesTheQueueAndComesBackWithItsFile) {
    const struct {
        SyncStatus before, superseded, returned;
    } cases[] = {
        {SyncStatus::discovered, SyncStatus::excluded, SyncStatus::discovered},
        {SyncStatus::staged, SyncStatus::excluded, SyncStatus::discovered},
        {SyncStatus::failed, SyncStatus::excluded, SyncStatus::discovered},
        {SyncStatus::dateUnresolved, SyncStatus::excluded, SyncStatus::discovered},
        {SyncStatus::verified, SyncStatus::verified, SyncStatus::verified},
        {SyncStatus::deletedLocally, SyncStatus::deletedLocally, SyncStatus::deletedLocally},
    };
    for (const auto& each : cases) {
        World world;
        world.discover(assetID(1));
        world.setStatus(assetID(1), each.before);
        StoredFiles files(world.database, world.life);
        LookedAtFiles looked(files);
        const std::string notUtf8 = "a/\xff.jpg";
        const KnownFile first = file(notUtf8.c_str(), 1, 5);
        const KnownFile second = file(notUtf8.c_str(), 2, 6);
        files.update({first, file("b.jpg", 3, 7)}, {}, {});
        looked.update({second}, {}, {first.identifier});
        EXPECT_EQ(world.status(assetID(1)), each.before) << "a look changes nothing";
        files.update({second}, {"b.jpg"}, {first.identifier});
        EXPECT_EQ(looked.files(), std::vector{second});
        EXPECT_EQ(world.status(assetID(1)), each.superseded);
        EXPECT_EQ(world.life.left().size(), each.superseded == SyncStatus::excluded ? 1 : 0);
        files.update({first}, {}, {second.identifier});
        EXPECT_EQ(world.status(assetID(1)), each.returned);
        EXPECT_EQ(files.contentOf(first.identifier), std::nullopt);
        world.life.exporting(world.record(assetID(1)).value(), {u"ab"_s, first.version});
        EXPECT_EQ(looked.contentOf(first.identifier), u"ab"_s);
    }
}

} // namespace quorvane::test
