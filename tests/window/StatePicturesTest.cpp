#include "ui/window/MenuBarController.h"
#include "ui/window/StatusBadge.h"
#include "window/WindowStory.h"

#include <QPainter>

namespace quorvane::test {

namespace {

/// Walks through every state of the product, and keeps of each the card that stands for it, with
/// its status item: one sheet a theme.
class StatePicturesTest : public WindowStory {
  protected:
    struct Look {
        ProductState state;
        const char *tone, *symbol, *title;
        QRgb badge;
        const char* toolTip;
    };
    struct Cell {
        QImage card;
        QPixmap badge;
        QString toolTip;
    };

    void SetUp() override {
        window.showWindowAndCenter();
        controller.setupStatusItem();
    }
    void expectLook(const Look& look) {
        SCOPED_TRACE(rawValue(look.state).toStdString());
        ASSERT_TRUE(awaitView([&] { return model->state() == look.state; }))
            << rawValue(model->state()).toStdString();
        settleView();
        const HeroView hero = window.dashboard().hero();
        const QSystemTrayIcon& item = *controller.statusItem();
        EXPECT_EQ(hero.tone, QLatin1String(look.tone));
        EXPECT_EQ(hero.symbol, QLatin1String(look.symbol));
        EXPECT_EQ(hero.title.toStdString(), look.title);
        EXPECT_EQ(item.toolTip().toStdString(), look.toolTip);
        const QImage badge = item.icon().pixmap(22).toImage();
        EXPECT_EQ(badge.pixelColor(badge.width() / 8, badge.height() / 2), QColor(look.badge));
        shot(u"state-%1-light"_s.arg(rawValue(look.state)));
        for (const AppTheme theme : {AppTheme::dark, AppTheme::light}) {
            window.applyTheme(theme);
            settleView();
            cells[theme].push_back({card(), item.icon().pixmap(36), item.toolTip()});
        }
    }
    QImage card() {
        QQuickItem* item = nullptr;
        for (const QString& name : {u"signInCard"_s, u"libraryAway"_s, u"hero"_s})
            item = item == nullptr ? find(name) : item;
        const double scale = window.window()->effectiveDevicePixelRatio();
        const QRectF place(item->mapToScene(QPointF()) * scale, item->size() * scale);
        return window.window()->grabWindow().copy(place.toRect());
    }
    QImage sheet(AppTheme theme) {
        constexpr int columns = 3, gap = 16, badge = 18; // points
        const std::vector<Cell>& all = cells.at(theme);
        const double scale = window.window()->effectiveDevicePixelRatio();
        std::vector<QPointF> places;
        double top = gap;
        for (std::size_t i = 0; i < all.size(); i += columns) {
            double highest = 0;
            for (std::size_t j = i; j < std::min(i + columns, all.size()); ++j) {
                const QSizeF size = QSizeF(all[j].card.size()) / scale;
                places.emplace_back(gap + static_cast<double>(j - i) * (size.width() + gap), top);
                highest = std::max(highest, size.height());
            }
            top += badge + 8 + highest + gap;
        }
        const double width = all[0].card.width() / scale + gap;
        QImage sheet((QSizeF(columns * width + gap, top) * scale).toSize(), QImage::Format_RGB32);
        sheet.fill(window.window()->color());
        QPainter painter(&sheet);
        painter.scale(scale, scale);
        painter.setPen(QColor(Qt::gray));
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        for (std::size_t i = 0; i < all.size(); ++i) {
            const QPointF at = places[i];
            painter.drawPixmap(QRect(at.toPoint(), QSize(badge, badge)), all[i].badge);
            painter.drawText(QRectF(at + QPointF(badge + 8, 0), QSizeF(width, badge)),
                             Qt::AlignVCenter, all[i].toolTip);
            painter.drawImage(
                QRectF(at + QPointF(0, badge + 8), QSizeF(all[i].card.size()) / scale),
                all[i].card);
        }
        return sheet;
    }
    void start(const emulator::Disturbance& fault) {
        world.google.clearDisturbances();
        world.google.addDisturbance(fault);
        click(u"start"_s);
    }
    void stop() {
        click(u"stop"_s);
        ASSERT_TRUE(settle());
        world.google.clearDisturbances();
    }

    FixedHost host{true};
    MenuBarController controller{*model, window, host};
    std::map<AppTheme, std::vector<Cell>> cells;
};

} // namespace

TEST_F(StatePicturesTest, everyStateIsSeenAsItIs) {
    using enum ProductState;
    expectLook({signedOut, "neutral", "icloud.and.arrow.up.fill", "Giriş yapılmadı", badgeGrey,
                "Giriş yapılmadı"});
    signIn();
    expectLook(
        {noLibrary, "neutral", "photo.stack.fill", "Arşiv seçilmedi", badgeBlue, "Quorvane"});
    int asked = 0;
    QObject::connect(&window, &MainWindowController::chooseLibraryRequested, &window,
                     [&] { ++asked; });
    click(u"start"_s);
    EXPECT_EQ(asked, 1);
    world.addPictures(12);
    openLibrary();
    expectLook({neverBackedUp, "neutral", "icloud.and.arrow.up.fill",
                "12 yeni öğe eşitlenmeyi bekliyor", badgeBlue, "Quorvane"});

    emulator::Disturbance silence = faultOf(emulator::RequestKind::upload, 6, 0);
    silence.stall = true;
    start(silence);
    ASSERT_TRUE(awaitView([&] { return model->syncCompletedCount() == 5; }));
    expectLook(
        {running, "syncing", "", "Eşitleme Devam Ediyor", badgeBlue, "Eşitleme devam ediyor..."});
    stop();
    expectLook({stopped, "neutral", "icloud.and.arrow.up.fill", "12 yeni öğe eşitlenmeyi bekliyor",
                badgeBlue, "Quorvane"});

    // The second one is under way for ever: only what went before it may change the state.
    silence.nth = 2;
    silence.times = 1;
    world.google.change([](emulator::Behaviour& google) { google.dailyRequests = 1; });
    clock.skipSleeps(false);
    start(silence);
    expectLook({waitingQuota, "waiting", "x.pause", "Google'ın günlük sınırı doldu", badgeAmber,
                "Google'ın günlük sınırı doldu"});
    expectShown({u"6 / 12"_s, u"duraklatıldı"_s});

    emulator::Disturbance cut = faultOf(emulator::RequestKind::upload, 1, 0);
    cut.dropRequestAfter = 0;
    world.google.addDisturbance(cut);
    world.google.change([](emulator::Behaviour& google) { google.dailyRequests = 0; });
    click(u"tryNow"_s);
    expectLook({waiting, "waiting", "x.pause", "Ağ bekleniyor", badgeAmber, "Ağ bekleniyor"});
    clock.skipSleeps(true);
    stop();
    click(u"start"_s);
    expectLook(
        {finished, "done", "checkmark.circle.fill", "Eşitleme Tamamlandı", badgeBlue, "Quorvane"});

    world.addPicture(u"yeni.jpg"_s);
    scan();
    expectLook({itemsWaiting, "neutral", "icloud.and.arrow.up.fill",
                "1 yeni öğe eşitlenmeyi bekliyor", badgeBlue, "Quorvane"});
    world.google.revokeTokens();
    click(u"start"_s);
    expectLook({sessionLapsed, "neutral", "x.pause", "1 öğe giriş bekliyor", badgeGrey,
                "Oturumun süresi doldu"});
    expectHidden({u"Google ile Giriş Yap"_s, u"Şimdi Eşitle"_s});
    click(u"signInAgain"_s);
    ASSERT_TRUE(awaitView([&] { return model->state() == finished; }))
        << "what the session ended goes on";

    const std::filesystem::path elsewhere = world.folder / "elsewhere";
    std::filesystem::rename(world.pictures, elsewhere);
    model->lookForLibrary();
    expectLook({libraryAway, "neutral", "icloud.and.arrow.up.fill", "Arşiv bağlı değil", badgeAmber,
                "Arşiv bağlı değil"});
    expectShown({u"Resim klasörü · 13 öğe"_s, u"Başka Kitaplık…"_s});
    expectHidden({u"Şimdi Eşitle"_s});
    std::filesystem::rename(elsewhere, world.pictures);
    click(u"lookAgain"_s);
    expectLook({upToDate, "good", "checkmark.shield.fill", "Arşiviniz Güncel ve Güvende", badgeBlue,
                "Quorvane"});

    const auto syncWith = [&](const QString& name, const std::optional<QByteArray>& date,
                              std::int64_t room) {
        world.google.change([=](emulator::Behaviour& google) { google.storageBytes = room; });
        world.addPicture(name, date);
        scan();
        click(u"start"_s);
    };
    syncWith(u"sığmayan.jpg"_s, "2021:03:05 18:22:10", 0);
    expectLook({failed, "error", "exclamationmark.circle.fill", "Eşitleme Uyarısı", badgeRed,
                "Eşitleme Uyarısı"});
    syncWith(u"tarihsiz.jpg"_s, std::nullopt, -1);
    expectLook({heldBack, "warning", "exclamationmark.circle.fill", "İnceleme Bekleyen Öğeler Var",
                badgeBlue, "İnceleme Bekleyen Öğeler Var"});
    EXPECT_EQ(cells[AppTheme::light].size(), 14U) << "of every state";
    savePicture(sheet(AppTheme::light), u"states-light"_s);
    window.applyTheme(AppTheme::dark);
    savePicture(sheet(AppTheme::dark), u"states-dark"_s);
}

} // namespace quorvane::test
