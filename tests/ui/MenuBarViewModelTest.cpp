#include "sqlite/Sqlite.h"
#include "support/Records.h"
#include "ui/AutoSync.h"
#include "ui/ModelStory.h"

namespace quorvane::test {

namespace {

class MenuBarViewModelTest : public ModelStory {};

TEST_F(MenuBarViewModelTest, aFirstBackup) {
    world.addPictures(30);
    world.addPicture(u"Tatil/tarihsiz.jpg"_s, std::nullopt);
    step(u"start"_s, [] {});
    step(u"choose the library"_s, [&] { openLibrary(); });
    step(u"sync without an account"_s, [&] { model->triggerSync(); });
    step(u"sign in"_s, [&] { model->signIn(); });
    step(u"sync"_s, [&] { model->triggerSync(); });
    step(u"leave the undated one"_s, [&] { model->retryQuarantinedItems(u"strictNone"_s); });
    step(u"give it the date of its file"_s,
         [&] { model->retryQuarantinedItems(u"fileSaveDate"_s); });
    step(u"sync it"_s, [&] { model->triggerSync(); });
    step(u"sign out"_s, [&] {
        model->signOut();
        settle();
        scan(); // nobody's state knows what was sent
    });
    expectStory(R"(## start
  statusMessage: Arşiviniz güncel ve güvende
## choose the library
  localAlbums: [1, false, Tatil]
  pendingCount: 31
  statusMessage: 31 yeni öğe eşitlenmeyi bekliyor
  totalPhotoCount: 31
## sync without an account
  errorMessage: OAuth: kullanici giris yapmamis
## sign in
  errorMessage: 
  isSignedIn: true
  state: never-backed-up
  syncState: idle
  userEmail: kullanici@example.com
## sync
  dateUnresolvedCount: 1
  pendingCount: 0
  state: held-back
  statusMessage: Arşiviniz güncel ve güvende
  syncTotalCount: 31
  verifiedCount: 30
## leave the undated one
## give it the date of its file
  dateUnresolvedCount: 0
  pendingCount: 1
  state: items-waiting
  statusMessage: 1 yeni öğe eşitlenmeyi bekliyor
## sync it
  pendingCount: 0
  state: finished
  statusMessage: Arşiviniz güncel ve güvende
  syncTotalCount: 1
  verifiedCount: 31
## sign out
  isSignedIn: false
  state: signed-out
  syncState: signedOut
  userEmail: 
)");
    EXPECT_EQ(world.google.mediaItems().size(), 31U);
    EXPECT_EQ(desktop.notices.join(u'\n').toStdString(),
              "Eşitleme Tamamlandı: 30 öğe Google Photos'a aktarıldı.\n"
              "Eşitleme Uyarısı: 1 öğe inceleme bekliyor\n"
              "Eşitleme Tamamlandı: 1 öğe Google Photos'a aktarıldı.");
    EXPECT_EQ(model->syncProgressFraction(), 1);
    EXPECT_NE(model->lastSyncTimeString(), u"Henüz yok"_s);
    EXPECT_TRUE(log.contains(u"[MenuBarViewModel] Çıkış yapıldı"_s));
}

TEST_F(MenuBarViewModelTest, originalsGoToTheTrashOnlyAfterAnAnswer) {
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString((world.folder / "data").native()));
    world.addPictures(3);
    openLibrary();
    signIn();
    model->setAutoDeleteEnabled(true);
    const auto sync = [&] {
        model->triggerSync();
        settle();
        return trash.open().has_value();
    };
    ASSERT_TRUE(sync());
    EXPECT_FALSE(model->isSyncing()) << "the question holds up no run";
    EXPECT_EQ(desktop.notices.filter(u"3 Öğe Çöp'e Taşınsın mı?"_s).size(), 1);
    model->answerTrash(false);
    EXPECT_FALSE(sync()) << "the same is not asked again";
    EXPECT_EQ(model->library()->run.library.fetchAssets()->size(), 3U);

    world.addPicture(u"yeni.jpg"_s);
    scan();
    ASSERT_TRUE(sync());
    model->answerTrash(true);
    settle();
    EXPECT_EQ(model->library()->run.library.fetchAssets()->size(), 0U);
    EXPECT_EQ(model->verifiedCount(), 4);
    EXPECT_FALSE(sync());
    qunsetenv("XDG_DATA_HOME");
}

TEST_F(MenuBarViewModelTest, runsBeginByThemselves) {
    AutoSync automatic(*model, {preferences, clock, desktop});
    world.addPictures(2);
    openLibrary();
    signIn();
    const auto comes = [&] {
        automatic.start();
        settle();
        return model->verifiedCount();
    };
    automatic.setWaitsOnMetered(true);
    desktop.isMetered = true;
    EXPECT_EQ(comes(), 0);
    automatic.pauseForAnHour();
    desktop.isMetered = false;
    desktop.networkChanged();
    settle();
    EXPECT_EQ(model->verifiedCount(), 0) << "paused";
    EXPECT_TRUE(automatic.pauseText().endsWith(u" kadar duraklatıldı"_s));
    automatic.resume();
    settle();
    EXPECT_EQ(model->verifiedCount(), 2) << "what was due begins when it may";
    automatic.setUploadLimit(5'000'000);
    EXPECT_EQ(automatic.uploadLimitText(), u"5 MB/s"_s);
}

TEST_F(MenuBarViewModelTest, keepsItsSettings) {
    EXPECT_EQ(model->appTheme(), AppTheme::system);
    model->setAppTheme(AppTheme::dark);
    model->setAutoDeleteEnabled(true);
    model->settings().setNotificationsEnabled(false);
    model->settings().setStartsAtLogin(true);
    EXPECT_TRUE(log.contains(u"🎨 Tema tercihi güncellendi: dark"_s));
    EXPECT_TRUE(log.contains(u"🗑️ Otomatik temizlik tercihi güncellendi: true"_s));
    EXPECT_TRUE(desktop.isAutostarted);
    const auto restarted = [this] {
        restart();
        return std::tuple(model->appTheme(), model->isAutoDeleteEnabled(),
                          model->settings().areNotificationsEnabled());
    };
    EXPECT_EQ(restarted(), std::tuple(AppTheme::dark, true, false));
    preferences.setString(preferenceKeys::appTheme, u"sepia"_s);
    preferences.setString(preferenceKeys::isAutoDeleteEnabled, u"yes"_s);
    preferences.setString(preferenceKeys::dateFallbackMode, u"yesterday"_s);
    EXPECT_EQ(restarted(), std::tuple(AppTheme::system, false, false));
    EXPECT_EQ(model->settings().dateFallbackMode(), DateFallbackMode::strictNone);
}

TEST_F(MenuBarViewModelTest, refreshingHardlyTouchesTheMainThread) {
    openLibrary();
    database().insertDiscoveredBatch(numberedBatch(200'000));
    std::vector<std::chrono::duration<double, std::milli>> times;
    for (int i = 0; i < 20; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        model->refreshState();
        times.emplace_back(std::chrono::steady_clock::now() - begin);
        settle();
    }
    std::ranges::nth_element(times, times.begin() + 10); // a busy machine may hold up a few
    EXPECT_LT(times[10].count(), 5);
    EXPECT_EQ(model->pendingCount(), 200'000);
}

TEST_F(MenuBarViewModelTest, aBrokenStoreReadsAsNothing) {
    world.addPictures(3);
    openLibrary();
    EXPECT_EQ(model->pendingCount(), 3);
    sqlite::Connection(world.folder / "home/Library/Application Support/Quorvane/quorvane.sqlite",
                       sqlite::Connection::Mode::readWriteCreate)
        .execute("DROP TABLE sync_records");
    model->refreshState();
    settle();
    EXPECT_EQ(model->pendingCount(), 0);
}

TEST_F(MenuBarViewModelTest, aRefusedRenewalAndAlbumAreTold) {
    signIn();
    browser.answer = [] {
        return QUrl(u"com.googleusercontent.apps.1234-abcd:/oauth2redirect?error=access_denied"_s);
    };
    model->reauthorizeGoogle();
    settle();
    EXPECT_EQ(model->errorMessage(), u"Yetkilendirme başarısız: OAuth: auth code alinamadi"_s);
    emulator::Disturbance fault = faultOf(emulator::RequestKind::albumsCreate);
    fault.status = 500;
    world.google.addDisturbance(fault);
    model->createGoogleAlbum(u"Aile"_s);
    settle();
    EXPECT_EQ(model->errorMessage(), u"Albüm oluşturulamadı: [Album] HTTP 500"_s);
    model->createGoogleAlbum(u" Aile "_s);
    settle();
    EXPECT_EQ(model->errorMessage(), QString());
    EXPECT_EQ(model->suggestNewAlbumTitle(), u"Aile - Parça 2"_s);
}

TEST_F(MenuBarViewModelTest, whatKeptAnEarlierRunStandsUntilItIsTriedAgain) {
    world.addPictures(2);
    signIn();
    const auto ended = [&](FaultCode code) {
        house.core.runState.keep({.phase = RunState::Phase::ended,
                                  .end = RunState::End::world,
                                  .fault = Fault{.code = code}});
        openLibrary();
    };
    ended(FaultCode::sessionEnded);
    EXPECT_EQ(model->state(), ProductState::sessionLapsed);
    EXPECT_FALSE(model->isSignedIn());
    signIn();
    EXPECT_EQ(model->verifiedCount(), 2) << "what the session ended goes on";

    world.addPicture(u"yeni.jpg"_s);
    openLibrary();
    RecordLife(database()).stageFailed(database().fetchPendingRecords(1, 0).front(), u"bozuk"_s);
    ended(FaultCode::unreachable);
    EXPECT_EQ(model->state(), ProductState::failed);
    EXPECT_TRUE(model->isRetryOffered());
    model->triggerSync();
    settle();
    EXPECT_EQ(model->verifiedCount(), 3);
    EXPECT_EQ(model->state(), ProductState::finished);
}

} // namespace

} // namespace quorvane::test
