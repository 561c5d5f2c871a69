#include "window/WindowStory.h"

namespace quorvane::test {

namespace {

class SheetStoryTest : public WindowStory {};

TEST_F(SheetStoryTest, warningsAndTheQuarantine) {
    world.addPictures(3);
    world.addPicture(u"tarihsiz.jpg"_s, std::nullopt);
    const QString album = world.google.addAlbum(u"Aile Arşivi"_s, 19'640);
    emulator::Disturbance fault = faultOf(emulator::RequestKind::upload);
    fault.status = 400;
    world.google.addDisturbance(fault);
    openSignedIn();
    choose(u"target"_s, u"⚠️ Aile Arşivi (19.640 / 20.000 • Sınıra Yakın)"_s);
    click(u"start"_s);
    ASSERT_TRUE(awaitView([&] { return !model->isSyncing(); }));
    world.google.change([](emulator::Behaviour& google) { google.listingForbidden = true; });
    choose(u"target"_s, u"Google Albümlerini Yenile"_s);
    expectShown({u"2 öğe inceleme bekliyor"_s, u"Google Albümleriniz Görünmüyor mu?"_s});
    shot(u"main-warnings-light"_s);
    world.google.change([](emulator::Behaviour& google) { google.listingForbidden = false; });
    click(u"reloadAlbums"_s);
    expectHidden({u"Google Albümleriniz Görünmüyor mu?"_s});
    choose(u"target"_s, u"Google Fotoğraflar (Ana Akış / Kitaplık)"_s);
    shot(u"main-quarantine-light"_s);

    EXPECT_EQ(desktop.latest, Notice::About::review);
    window.dashboard().open(Notice::About::trash);
    expectHidden({u"Sakla"_s}); // nothing is asked
    window.dashboard().open(desktop.latest);
    expectShown({u"İnceleme Gereken Dosyalar"_s, u"Tarih Eksik"_s,
                 u"Tarihsiz Fotoğraflar İçin Ne Yapılsın?"_s, u"Yeniden Sıraya Ekle (1)"_s,
                 u"Google'ın Geri Çevirdikleri"_s, u"Tekrar Dene"_s});
    EXPECT_EQ(focus(), u"choice2"_s);
    key(Qt::Key_Down);
    expectShown({u"Yeniden Sıraya Ekle (2)"_s});
    EXPECT_EQ(focus(), u"choice0"_s);
    shot(u"quarantine-sheet-light"_s);
    click(u"show1"_s);
    EXPECT_TRUE(exists(desktop.revealed)) << desktop.revealed;
    key(Qt::Key_Escape);
    expectHidden({u"İnceleme Gereken Dosyalar"_s});
    EXPECT_EQ(model->settings().dateFallbackMode(), DateFallbackMode::strictNone);
    click(u"quarantineLink"_s);
    click(u"choice1"_s);
    click(u"retry"_s);
    expectHidden({u"İnceleme Gereken Dosyalar"_s, u"2 öğe inceleme bekliyor"_s});
    EXPECT_EQ(model->settings().dateFallbackMode(), DateFallbackMode::today);
    EXPECT_EQ(model->pendingCount(), 2);
}

TEST_F(SheetStoryTest, theTrashQuestionComesWhenItIsOpened) {
    openSignedIn();
    trash.confirmDeletion({412,
                           3'800'000'000,
                           u"/home/ayse/.local/share/Trash"_s,
                           {},
                           {{KeptReason::notVerified, 22},
                            {KeptReason::edited, 9},
                            {KeptReason::changed, 1'004},
                            {KeptReason::notHere, 2}}});
    ASSERT_TRUE(awaitView([&] { return trash.open().has_value(); }));
    expectHidden({u"Sakla"_s}); // never by itself
    window.dashboard().open(Notice::About::trash);
    expectShown({u"412 Öğe Çöp'e Taşınsın mı?"_s, u"Çöp'e Taşı"_s, u"Dışarıda Bırakılanlar"_s,
                 u"1.037"_s, u"Eşitlemeden sonra değişti"_s, u"Yeni hâli yüklenmeyi bekliyor"_s,
                 u"1.004"_s});
    EXPECT_EQ(focus(), u"alertButton0"_s);
    shot(u"trash-question-light"_s);
    key(Qt::Key_Escape);
    EXPECT_FALSE(trash.open());
}

TEST_F(SheetStoryTest, theSessionIsChecked) {
    openSignedIn();
    using State = CheckedThing::State;
    checkedThings = {
        {State::fine, u"Oturum"_s, u"açık"_s},
        {State::unknown, u"Saat"_s, u"öğrenilemedi"_s},
        {State::faulty, u"Arşiv: yok"_s, u"Diski bağlayın"_s, CheckedThing::Remedy::chooseLibrary}};
    click(u"settings"_s);
    click(u"checkSession"_s);
    ASSERT_TRUE(awaitView([&] { return shows(u"Yeniden Denetle"_s); }));
    expectShown({u"Oturum Denetimi"_s, u"açık"_s, u"Diski bağlayın"_s, u"Yeniden Denetle"_s});
    EXPECT_TRUE(texts().filter(u" denetlendi · 1 sorun, 1 madde yolunda"_s).size() == 1);
    const QStringList seen = texts();
    EXPECT_LT(seen.indexOf(u"Arşiv: yok"_s), seen.indexOf(u"Oturum"_s)) << "faults come first";
    EXPECT_EQ(focus(), u"checkAgain"_s);
    shot(u"session-check-light"_s);
    int asked = 0;
    QObject::connect(&window, &MainWindowController::chooseLibraryRequested, &window,
                     [&] { ++asked; });
    QObject::connect(&window, &MainWindowController::reportRequested, &window, [&] { ++asked; });
    click(u"checkReport"_s);
    const std::filesystem::path report = world.folder / "rapor.txt";
    window.dashboard().lives()->saveReport(report, Names::hidden);
    settleView();
    EXPECT_TRUE(QString::fromUtf8(readFile(report)).contains(u"Sorun: Arşiv: yok"_s));
    click(u"checkHelp0"_s);
    EXPECT_EQ(asked, 2);
    expectHidden({u"Yeniden Denetle"_s});
}

TEST_F(SheetStoryTest, whatOfALibraryGoesToGoogleIsChosen) {
    const QString album = world.google.addAlbum(u"Aile"_s, 3);
    openSignedIn();
    click(u"settings"_s);
    expectShown({u"Ayarlar"_s, u"Kitaplık"_s, u"Bildirimler"_s});
    expectHidden({u"Google'a Aktarma"_s}); // a folder has nothing to choose
    EXPECT_EQ(focus(), u"changeLibrary"_s);
    key(Qt::Key_Escape);

    LibrarySession bundle = *model->library();
    LibraryChoices chosen;
    bundle.isBundle = true;
    bundle.choose = [&](const LibraryChoices& choices) { chosen = choices; };
    model->setLibrary(std::make_shared<LibrarySession>(bundle));
    click(u"settings"_s);
    expectShown({u"Google'a Aktarma"_s, u"Özgün"_s, u"Fotoğraf ve kısa filmi birlikte gider"_s,
                 u"Aynı adlı albümler açılır ve doldurulur"_s});
    shot(u"settings-light"_s);
    for (const QString& control : {u"version1"_s, u"motion"_s, u"mirror"_s, u"captions"_s})
        click(control);
    LibraryChoices all;
    all.versions = LibraryChoices::Versions::edited;
    all.live = LibraryChoices::Live::motion;
    all.mirrorAlbums = all.captions = true;
    EXPECT_EQ(chosen, all);
    click(u"settingsClose"_s);

    model->selectTargetAlbum(album);
    bundle.choices = all;
    model->setLibrary(std::make_shared<LibrarySession>(bundle));
    click(u"start"_s);
    expectShown({u"Albümler hedef albümle birlikte Google'a taşınamaz: hedef olarak ana akışı "
                 "seçin ya da Ayarlar'da albümleri yansıtmayı kapatın"_s});
    click(u"settings"_s);
    click(u"mirror"_s);
    EXPECT_FALSE(chosen.mirrorAlbums);
    click(u"mirror"_s);
    EXPECT_FALSE(chosen.mirrorAlbums) << "one album is the target";
    expectShown({u"Hedef bir albümken yapılamaz; hedef olarak ana akışı seçin"_s});
}

TEST_F(SheetStoryTest, whatHasNoDateIsReviewed) {
    world.addPicture(u"IMG_0040.jpg"_s);
    world.addPicture(u"IMG_0041.jpg"_s, std::nullopt);
    world.addPicture(u"IMG_0042.jpg"_s);
    world.addPicture(u"hareketli.gif"_s);
    openSignedIn();
    click(u"start"_s);
    ASSERT_TRUE(awaitView([&] { return !model->isSyncing(); }));
    click(u"quarantineLink"_s);
    expectShown({u"Tarih Yazılamayan Biçimler"_s, u"IMG_0041.jpg"_s,
                 u"5 Mart 2021 · komşu dosyalar (IMG_0040.jpg, IMG_0042.jpg)"_s,
                 u"Yeniden Sıraya Ekle (0)"_s});
    shot(u"review-undated-light"_s);
    for (int i = 0; focus() != u"group0"_s && i < 9; ++i)
        key(Qt::Key_Tab);
    EXPECT_EQ(focus(), u"group0"_s) << "behind the choices, the button and the cross";
    key(Qt::Key_Tab);
    EXPECT_EQ(focus(), u"accept1"_s);
    key(Qt::Key_Return);
    expectHidden({u"IMG_0041.jpg"_s, u"Tarih Eksik"_s});
    click(u"undatable"_s);
    expectShown({u"Yeniden Sıraya Ekle (1)"_s});
    click(u"retry"_s);
    EXPECT_EQ(model->pendingCount(), 2);
    EXPECT_EQ(model->dateUnresolvedCount(), 0);
}

TEST_F(SheetStoryTest, aLineOfTheLogTellsTheLifeOfItsRecord) {
    clock.followSystem(); // the steps come from the store and from the run
    world.addPicture(u"Gizli tatil.jpg"_s);
    world.addPicture(u"tarihsiz.jpg"_s, std::nullopt);
    openSignedIn();
    model->toggleInspector();
    click(u"start"_s);
    ASSERT_TRUE(awaitView([&] { return !model->isSyncing(); }));
    const auto lineOf = [&](const QString& beginning) {
        const LogListModel& lines = *model->recentLogs();
        int line = lines.rowCount() - 1;
        while (line >= 0 && !lines.data(lines.index(line), LogListModel::messageRole)
                                 .toString()
                                 .startsWith(beginning))
            --line;
        return line;
    };
    EXPECT_TRUE(awaitView([&] { return lineOf(u"[Sync] 🛑 Tarih tespit edilemedi"_s) >= 0; }))
        << "what only the console was told";
    click(u"open%1"_s.arg(lineOf(u"[Batch] VERIFIED: Gizli tatil.jpg"_s)));
    const QStringList steps{u"keşfedildi"_s, u"hazırlandı"_s, u"tarih: dosyanın içi"_s,
                            u"yüklendi"_s, u"oluşturuldu"_s};
    expectShown(steps + QStringList{u"5 Mart 2021 18:22"_s});
    const QStringList seen = texts();
    EXPECT_TRUE(
        std::ranges::is_sorted(steps, {}, [&](const QString& step) { return seen.indexOf(step); }));
    shot(u"inspector-timeline-light"_s);
    find(u"console"_s)->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Escape);
    expectHidden({u"keşfedildi"_s});

    const std::filesystem::path page = world.folder / "sayfa.html";
    window.dashboard().runReport()->save(page);
    ASSERT_TRUE(awaitView([&] { return desktop.opened == page; }));
    EXPECT_EQ(readFile(page), "1 doğrulandı");
    window.dashboard().runReport()->save(world.folder / "none" / "sayfa.html");
    ASSERT_TRUE(
        awaitView([&] { return model->errorMessage().startsWith(u"Rapor yazılamadı: "_s); }));

    click(u"saveReport"_s);
    for (const Names names : {Names::hidden, Names::kept}) {
        const std::filesystem::path file = world.folder / "rapor.txt";
        window.dashboard().lives()->saveReport(file, names);
        settleView();
        const QString report = QString::fromUtf8(readFile(file));
        EXPECT_TRUE(report.startsWith(u"Quorvane raporu\n"_s));
        EXPECT_TRUE(report.contains(u"DATE_UNRESOLVED"_s));
        EXPECT_EQ(report.contains(u"Gizli tatil"_s), names == Names::kept);
        EXPECT_FALSE(report.contains(u"ornek.com"_s));
    }
}

} // namespace

} // namespace quorvane::test
