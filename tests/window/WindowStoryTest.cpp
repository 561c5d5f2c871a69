#include "window/WindowStory.h"

#include <QElapsedTimer>

namespace quorvane::test {

namespace {

class WindowStoryTest : public WindowStory {};

TEST_F(WindowStoryTest, signingInAndOut) {
    window.showWindowAndCenter();
    expectShown({u"Google Hesabınızı Bağlayın"_s, u"Fotoğraf Kitaplığını Seç..."_s});
    expectHidden({u"Şimdi Eşitle"_s, u"Arşiviniz Güncel ve Güvende"_s});
    int asked = 0;
    QObject::connect(&window, &MainWindowController::chooseLibraryRequested, &window,
                     [&] { ++asked; });
    choose(u"source"_s, u"Fotoğraf Kitaplığını Seç..."_s);
    click(u"settings"_s);
    click(u"changeLibrary"_s);
    EXPECT_EQ(asked, 2);
    openLibrary();
    shot(u"main-signed-out-light"_s);

    const QString refusal =
        u"com.googleusercontent.apps.1234-abcd:/oauth2redirect?error=access_denied"_s;
    std::promise<void> consent;
    browser.answer = [&] {
        consent.get_future().wait();
        return QUrl(refusal);
    };
    handOverURL = [&](const QString& url) {
        if (url == refusal)
            consent.set_value();
        return url == refusal;
    };
    model->signIn();
    ASSERT_TRUE(awaitView([&] { return shows(u"Vazgeç"_s) && find(u"callbackAddress"_s); }));
    EXPECT_EQ(find(u"signInAddress"_s)->property("text").toString(),
              QString::fromUtf8(browser.page.toEncoded()));
    shot(u"sign-in-waiting-light"_s);
    for (const QString& pasted : {u"https://accounts.example.com/"_s, refusal}) {
        find(u"callbackAddress"_s)->forceActiveFocus();
        type(pasted);
        key(Qt::Key_Return);
        ASSERT_TRUE(awaitView([&] {
            return shows(pasted == refusal ? u"Giriş başarısız: OAuth: auth code alinamadi"_s
                                           : u"Bu adres beklenen geri dönüş adresi değil"_s);
        }));
    }
    shot(u"error-banner-light"_s);
    click(u"dismissError"_s);
    expectHidden({u"Giriş başarısız: OAuth: auth code alinamadi"_s});

    browser.answer = nullptr;
    click(u"signIn"_s);
    expectShown({u"Google Photos Bağlı"_s, u"ayse.yilmaz@ornek.com"_s, u"Şimdi Eşitle"_s});
    expectHidden({u"Google Hesabınızı Bağlayın"_s});
    click(u"settings"_s);
    click(u"signOut"_s);
    expectShown({u"Google ile Giriş Yap"_s});
}

TEST_F(WindowStoryTest, aRouteIsChosen) {
    world.addPicture(u"Tatil 2025/a.jpg"_s);
    world.addPicture(u"Aile/b.jpg"_s);
    for (const auto& [title, count] :
         {std::pair{u"Tatil 2025"_s, 1'204}, {u"Aile Arşivi"_s, 19'640}, {u"Düğün"_s, 20'000}})
        world.google.addAlbum(title, count);
    openSignedIn();
    expectShown({u"Fotoğraf & Video Arşivi (2)"_s, u"Google Fotoğraflar (Ana Akış / Kitaplık)"_s,
                 u"2 yeni öğe eşitlenmeyi bekliyor"_s, u"Son eşitleme: Henüz yok"_s});
    shot(u"main-idle-light"_s);
    click(u"source"_s);
    expectShown({u"Özel Albümlerim"_s, u"Aile (1)"_s});
    shot(u"menu-source-light"_s);
    key(Qt::Key_Down);
    key(Qt::Key_Return);
    expectShown({u"Aile (1)"_s});
    expectHidden({u"Özel Albümlerim"_s});

    click(u"target"_s);
    expectShown({u"Google Albümlerim (3)"_s, u"⛔️ Düğün (20.000 • Kapasite Dolu)"_s});
    shot(u"menu-target-light"_s);
    key(Qt::Key_Escape);
    choose(u"target"_s, u"⚠️ Aile Arşivi (19.640 / 20.000 • Sınıra Yakın)"_s);
    expectShown({u"19.640 / 20.000"_s, u"Albüm Sınırına Yaklaşıldı (19.640 / 20.000)"_s});
    choose(u"target"_s, u"⛔️ Düğün (20.000 • Kapasite Dolu)"_s);
    expectShown({u"Google Photos Albüm Sınırı Doldu (20.000 / 20.000)"_s});
    click(u"start"_s);
    expectShown({u"Albüm Sınırı (20.000) Aşılacak"_s});
    key(Qt::Key_Escape);
    expectHidden({u"Albüm Sınırı (20.000) Aşılacak"_s});

    choose(u"target"_s, u"Özel Albüm Yarat..."_s);
    EXPECT_EQ(focus(), u"albumName"_s);
    key(Qt::Key_Backspace);
    EXPECT_FALSE(find(u"albumCreate"_s)->isEnabled());
    shot(u"album-create-light"_s);
    type(u"İzmir'de kış"_s);
    key(Qt::Key_Return);
    expectShown({u"İzmir'de kış"_s, u"0 / 20.000"_s});
    expectHidden({u"Yeni Google Photos Albümü"_s});

    for (int i = 0; i < 200; ++i)
        world.google.addAlbum(u"Albüm %1"_s.arg(i, 3, 10, QLatin1Char('0')), i);
    model->loadGoogleAlbums();
    ASSERT_TRUE(settle());
    click(u"target"_s);
    key(Qt::Key_End);
    expectShown({u"Albüm 199 (199)"_s});
    key(Qt::Key_Escape);
}

TEST_F(WindowStoryTest, aSyncRunsAndIsStopped) {
    world.addPictures(30);
    openSignedIn();
    world.google.addDisturbance(stall(emulator::RequestKind::batchCreate));
    click(u"start"_s);
    ASSERT_TRUE(awaitView([&] {
        return world.google.requestCount(emulator::RequestKind::batchCreate) > 0 &&
               model->syncCompletedCount() == 30;
    }));
    tracker.add({u"a"_s, u"Sahil Yürüyüşü – Ağustos 2024.MOV"_s, true, 100, 0, 0, clock.now()});
    tracker.add({u"b"_s, u"IMG_4823.HEIC"_s, false, 100, 0, 0, clock.now()});
    tracker.updateProgress(u"a"_s, 64, 100);
    tracker.updateProgress(u"b"_s, 27, 100);
    model->triggerSync(); // which does nothing now
    ASSERT_TRUE(awaitView([&] { return shows(u"30 / 30"_s); }));
    expectShown({u"Eşitleme Devam Ediyor"_s, u"%100"_s});
    shot(u"main-syncing-light"_s);

    const int before = model->recentLogs()->rowCount();
    const auto line = [&](LogLevel level, const QString& text) {
        logPublisher.send({.id = {}, .timestamp = clock.now(), .message = text, .level = level});
    };
    line(LogLevel::network, u"[Sync] Kuyruk gecisi 1: 2340 medya bekliyor"_s);
    line(LogLevel::success, u"[OAuth] ✅ Access token başarıyla alındı ve kaydedildi."_s);
    line(LogLevel::info, u"[Batch] VERIFIED: IMG_4819.HEIC -> AJq0nVw2k"_s);
    line(LogLevel::warning,
         u"[Metadata] ⚠️ Tarih çözümlenemedi (UNRESOLVED_DATE): IMG_0093.PNG"_s);
    line(LogLevel::error, u"[PhotoKit] Kayıt hatası 7C1E0A52/L0/001: dosya okunamadı"_s);
    click(u"inspectorToggle"_s);
    EXPECT_EQ(window.window()->width(), 880);
    ASSERT_TRUE(awaitView([&] { return shows(u"%64"_s); }));
    expectShown({u"CANLI"_s, u"Aktif"_s, u"%27"_s, u"GÜNCEL HIZ"_s, u"30"_s});
    ASSERT_TRUE(awaitView([&] {
        return model->recentLogs()->rowCount() >= before + 5 &&
               find(u"console"_s)->property("atYEnd").toBool();
    }));
    shot(u"inspector-open-light"_s);
    choose(u"theme"_s, u"Koyu"_s);
    EXPECT_EQ(model->appTheme(), AppTheme::dark);
    shot(u"inspector-open-dark"_s);
    choose(u"theme"_s, u"Açık"_s);
    click(u"theme"_s);
    shot(u"menu-theme-light"_s);
    key(Qt::Key_Escape);

    click(u"stop"_s);
    tracker.remove(u"a"_s);
    tracker.remove(u"b"_s);
    ASSERT_TRUE(awaitView([&] { return shows(u"Şu an hatta dosya aktarımı yok"_s); }));
    expectShown({u"Eşitleme kullanıcı tarafından durduruldu"_s, u"Boşta"_s});
    shot(u"inspector-idle-light"_s);
    ASSERT_TRUE(awaitView([&] { return !model->isSyncing(); }));
    const int lines = model->recentLogs()->rowCount();
    click(u"clearLog"_s);
    EXPECT_LT(model->recentLogs()->rowCount(), lines) << "what the end of the run says may follow";
    click(u"inspectorClose"_s);
    EXPECT_EQ(window.window()->width(), 440);

    world.google.clearDisturbances();
    click(u"start"_s);
    ASSERT_TRUE(awaitView([&] { return !model->isSyncing(); }));
    expectShown({u"Eşitleme Tamamlandı"_s, u"Tüm anılarınız bulutta güncel"_s});
    shot(u"hero-done-light"_s);
    click(u"deletion"_s);
    EXPECT_TRUE(model->isAutoDeleteEnabled());
    choose(u"theme"_s, u"Koyu"_s);
    shot(u"main-done-dark"_s);
}

TEST_F(WindowStoryTest, theAlbumLimit) {
    world.addPictures(30);
    world.google.addAlbum(u"Aile Arşivi"_s, 19'980);
    openSignedIn();
    choose(u"target"_s, u"⚠️ Aile Arşivi (19.980 / 20.000 • Sınıra Yakın)"_s);
    click(u"start"_s);
    expectShown({u"Albüm Sınırı (20.000) Aşılacak"_s,
                 u"Seçili albümünüz (Aile Arşivi) 19.980 öğe içeriyor. Eklenecek 30 öğe ile 20.000 "
                 "kapasitesi aşılacaktır."_s,
                 u"Yeni Albüm (Aile Arşivi - Parça 2) Oluştur ve Devam Et"_s});
    EXPECT_EQ(focus(), u"alertButton0"_s);
    shot(u"presync-alert-light"_s);
    click(u"alertButton1"_s);
    ASSERT_TRUE(awaitView([&] { return model->showAlbumLimitAlert() && !model->isSyncing(); }));
    expectShown(
        {u"Google Photos Albüm Sınırı (20.000) Doldu!"_s, u"Parça 2 Oluştur ve Devam Et"_s});
    shot(u"album-full-alert-light"_s);
    key(Qt::Key_Escape);
    expectHidden({u"Google Photos Albüm Sınırı (20.000) Doldu!"_s});
    expectShown({u"Eşitleme Uyarısı"_s, u"Albüm sınırı (20.000) doldu!"_s, u"Tekrar Dene"_s});
    shot(u"album-full-light"_s);
    click(u"start"_s);
    click(u"alertButton0"_s);
    ASSERT_TRUE(awaitView([&] { return model->state() == ProductState::finished; }));
    EXPECT_EQ(world.google.albums().at(1).itemCount, 10);
}

TEST_F(WindowStoryTest, theWindowIsOnlyHidden) {
    MainWindowController(*model, automatic, preferences).prepare();
    EXPECT_FALSE(preferences.string(u"QuorvaneMainWindow"_s)) << "nobody saw where it was";
    EXPECT_EQ(window.window(), nullptr);
    QElapsedTimer timer;
    timer.start();
    window.toggleWindow();
    settleView();
    EXPECT_LT(timer.elapsed(), 1'000) << "a click to the first frame";
    RecordProperty("firstFrame", static_cast<int>(timer.elapsed()));
    QQuickView* view = window.window();
    EXPECT_EQ(view->size(), QSize(440, 650));
    EXPECT_TRUE(window.dashboard().isLive());
    view->close();
    EXPECT_FALSE(view->isVisible());
    EXPECT_FALSE(window.dashboard().isLive());
    EXPECT_TRUE(preferences.string(u"QuorvaneMainWindow"_s));

    int told = 0;
    QObject::connect(&window.dashboard(), &Dashboard::accountChanged, view, [&] { ++told; });
    model->toggleInspector();
    signIn();
    EXPECT_EQ(told, 0) << "a hidden window takes no part";
    window.toggleWindow();
    EXPECT_EQ(view, window.window());
    EXPECT_EQ(view->size(), QSize(880, 650));
    expectShown({u"ayse.yilmaz@ornek.com"_s});
    view->requestActivate();
    ASSERT_TRUE(awaitView([&] { return view->isActive(); }));
    view->setWindowStates(Qt::WindowMaximized); // as a Wayland compositor or its title bar does
    EXPECT_GT(view->maximumWidth(), 880);
    view->setWindowStates(Qt::WindowNoState);
    EXPECT_EQ(view->maximumSize(), QSize(880, 650));
    window.toggleWindow();
    EXPECT_FALSE(view->isVisible());
}

} // namespace

} // namespace quorvane::test
