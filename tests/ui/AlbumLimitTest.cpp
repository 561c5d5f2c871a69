#include "support/Records.h"
#include "ui/ModelWorld.h"

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

class AlbumLimitTest : public testing::Test, public ModelWorld {};

TEST_F(AlbumLimitTest, aRunThatFilledItsAlbumGoesOnInTheNextPart) {
    world.addPictures(30);
    const QString near = world.google.addAlbum(u"Aile"_s, 19'990);
    openLibrary();
    signIn();
    model->selectTargetAlbum(near);
    model->triggerSync();
    model->confirmPreSyncStopAtLimit();
    ASSERT_TRUE(settle());
    EXPECT_EQ(model->state(), ProductState::failed);
    EXPECT_EQ(model->verifiedCount(), 10);
    EXPECT_TRUE(model->albumLimitAlertMessage().startsWith(
        u"Hedef albümünüz (Aile) maksimum 20.000 medya kapasitesine ulaştı. 'Aile - Parça 2'"_s));
    model->createNextPartAlbumAndResume();
    ASSERT_TRUE(settle());
    EXPECT_EQ(model->state(), ProductState::finished);
    EXPECT_EQ(world.google.albums().at(1).title, u"Aile - Parça 2"_s);
    EXPECT_EQ(world.google.albums().at(1).itemCount, 20);
}

TEST_F(AlbumLimitTest, foreseesTheLimitOfAnAlbum) {
    struct Row {
        std::int64_t items;
        int pending;
        bool isNear, isFull, isAsked, isRefused;
    };
    for (const Row row :
         {Row{19'499, 500, false, false, false, false}, Row{19'499, 502, false, false, true, false},
          Row{19'500, 500, true, false, false, false}, Row{19'500, 501, true, false, true, false},
          Row{19'999, 1, true, false, false, false}, Row{20'000, 0, true, true, false, true},
          Row{20'000, 1, true, true, true, false},
          Row{std::numeric_limits<std::int64_t>::max(), 1, true, true, true, false}}) {
        SCOPED_TRACE(testing::Message() << row.items << " + " << row.pending);
        ModelWorld fresh;
        const QString id = fresh.world.google.addAlbum(u"Aile"_s, row.items);
        fresh.openLibrary();
        fresh.database().insertDiscoveredBatch(numberedBatch(row.pending));
        fresh.signIn();
        fresh.model->selectTargetAlbum(id);
        EXPECT_EQ(fresh.model->route().isTargetNearLimit(), row.isNear);
        EXPECT_EQ(fresh.model->route().isTargetFull(), row.isFull);
        fresh.model->triggerSync(); // without a library it stops short of a run
        EXPECT_EQ(fresh.model->showPreSync20kAlert(), row.isAsked);
        EXPECT_EQ(fresh.model->showAlbumLimitAlert(), row.isRefused);
        EXPECT_EQ(fresh.model->albumLimitAlertMessage().contains(u"20.000 medya sınırına ulaştı"_s),
                  row.isRefused);

        // An album that is no more, and the library stream, have no limit.
        fresh.preferences.setString(preferenceKeys::targetAlbumID, u"gone"_s);
        fresh.model->dismissPreSync20kAlert();
        fresh.model->refreshState();
        fresh.model->triggerSync();
        EXPECT_FALSE(fresh.model->showPreSync20kAlert());
    }
}

} // namespace

} // namespace quorvane::test
