#include "sqlite/Sqlite.h"
#include "ui/AutoSync.h"
#include "ui/ModelWorld.h"

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

class MenuBarViewModelTest : public testing::Test, public ModelWorld {};

TEST_F(MenuBarViewModelTest, theDesktopTellsHowARunEnded) {
    world.addPictures(3);
    world.addPicture(u"Tatil/tarihsiz.jpg"_s, std::nullopt);
    openLibrary();
    model->triggerSync();
    EXPECT_EQ(model->errorMessage(), u"OAuth: kullanici giris yapmamis"_s);
    signIn();
    EXPECT_TRUE(model->errorMessage().isEmpty());
    for (const QString& fallback : {u"strictNone"_s, u"fileSaveDate"_s}) {
        model->triggerSync();
        ASSERT_TRUE(settle());
        model->retryQuarantinedItems(fallback);
        ASSERT_TRUE(settle());
    }
    EXPECT_EQ(model->pendingCount(), 1) << "with the date of its file";
    model->triggerSync();
    ASSERT_TRUE(settle());
    EXPECT_EQ(desktop.notices.join(u'\n').toStdString(),
              "Eşitleme Tamamlandı: 3 öğe Google Photos'a aktarıldı.\n"
              "Eşitleme Uyarısı: 1 öğe inceleme bekliyor\n"
              "Eşitleme Tamamlandı: 1 öğe Google Photos'a aktarıldı.");
    EXPECT_EQ(world.google.mediaItems().size(), 4U);
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

    automatic.setOn(true);
    world.addPicture(u"yeni.jpg"_s);
    scan();
    world.google.addDisturbance(stall(emulator::RequestKind::upload));
    model->triggerSync();
    model->stopSync();
    settle();
    for (const QTimer* timer : automatic.findChildren<QTimer*>())
        EXPECT_FALSE(timer->isActive()) << "what the person stopped stays stopped";
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
