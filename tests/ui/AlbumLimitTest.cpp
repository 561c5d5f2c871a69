#include "support/Records.h"
#include "ui/ModelStory.h"

namespace quorvane::test {

namespace {

class AlbumLimitTest : public ModelStory {};

TEST_F(AlbumLimitTest, theAlbumLimit) {
    world.addPictures(30);
    const QString near = world.google.addAlbum(u"Aile"_s, 19'990);
    const QString full = world.google.addAlbum(u"Dolu"_s, 20'000);
    openLibrary();
    signIn();
    changes();
    step(u"choose an album with room for ten"_s, [&] { model->selectTargetAlbum(near); });
    step(u"sync"_s, [&] { model->triggerSync(); });
    step(u"put it off"_s, [&] { model->dismissPreSync20kAlert(); });
    step(u"sync after all, and stop at the limit"_s, [&] {
        model->triggerSync();
        model->confirmPreSyncStopAtLimit();
    });
    step(u"go on in the next part"_s, [&] { model->createNextPartAlbumAndResume(); });
    step(u"choose a full album"_s, [&] { model->selectTargetAlbum(full); });
    step(u"sync into it"_s, [&] { model->triggerSync(); });
    expectStory(R"(## choose an album with room for ten
  selectedTargetAlbumTitle: Aile
## sync
  preSync20kCurrentCount: 19990
  preSync20kNextPartName: Aile - Parça 2
  preSync20kPendingCount: 30
  preSync20kTargetAlbumName: Aile
  showPreSync20kAlert: true
## put it off
  preSync20kCurrentCount: 0
  preSync20kNextPartName: 
  preSync20kPendingCount: 0
  preSync20kTargetAlbumName: 
  showPreSync20kAlert: false
## sync after all, and stop at the limit
  albumLimitAlertMessage: Hedef albümünüz (Aile) maksimum 20.000 medya kapasitesine ulaştı. 'Aile - Parça 2' oluşturup aktarıma kesintisiz devam etmek ister misiniz?
  googleAlbums: [20000, ⛔️ Aile (20.000 • Kapasite Dolu), Aile | 20000, ⛔️ Dolu (20.000 • Kapasite Dolu), Dolu]
  pendingCount: 20
  showAlbumLimitAlert: true
  state: failed
  statusMessage: Albüm sınırı (20.000) doldu!
  syncState: error
  syncTotalCount: 30
  verifiedCount: 10
## go on in the next part
  googleAlbums: [20000, ⛔️ Aile (20.000 • Kapasite Dolu), Aile | 20000, ⛔️ Dolu (20.000 • Kapasite Dolu), Dolu | 20, Aile - Parça 2 (20), Aile - Parça 2]
  pendingCount: 0
  selectedTargetAlbumTitle: Aile - Parça 2
  showAlbumLimitAlert: false
  state: finished
  statusMessage: Arşiviniz güncel ve güvende
  syncState: idle
  syncTotalCount: 20
  verifiedCount: 30
## choose a full album
  selectedTargetAlbumTitle: Dolu
## sync into it
  albumLimitAlertMessage: Seçili Google Photos albümü (Dolu) 20.000 medya sınırına ulaştı (20.000/20.000)! Lütfen yeni bir albüm oluşturun veya başka bir albüm seçin.
  showAlbumLimitAlert: true
  state: failed
  syncState: error
)");
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
