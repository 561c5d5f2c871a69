#include "ui/window/MenuBarController.h"
#include "ui/window/StatusBadge.h"
#include "ui/window/SvgPath.h"
#include "ui/window/Symbols.h"
#include "window/WindowWorld.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

/// The colour of the pixel at a distance from the middle, at an angle counter-clockwise from three
/// o'clock, turned clockwise with the frame.
QColor at(const QImage& image, double scale, double radius, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    return image.pixelColor(static_cast<int>((9 + radius * std::cos(angle)) * scale),
                            static_cast<int>((9 - radius * std::sin(angle)) * scale));
}

TEST(StatusItemTest, everyFrameIsTheTurnedBadge) {
    const QColor blue(37, 99, 235);
    for (const double scale : {1.0, 2.0, 24 / 18.0})
        for (int frame = 0; frame < MenuBarIconAnimator::frameCount; ++frame) {
            SCOPED_TRACE(testing::Message() << "frame " << frame << " scale " << scale);
            const double turn = frame * 22.5;
            const QImage image = MenuBarIconAnimator::renderFrame({18, 18}, turn, scale);
            ASSERT_EQ(image.width(), static_cast<int>(std::lround(18 * scale)));
            EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
            EXPECT_EQ(at(image, scale, 0, 0), QColor(Qt::white));
            for (const double corner : {45.0, 135.0, 225.0, 315.0})
                EXPECT_EQ(at(image, scale, 8, corner), blue);
            for (const double onArc : {0.0, 49.5, 90.0, 180.0, 229.5, 270.0})
                EXPECT_GT(at(image, scale, 4.8, onArc - turn).red(), 120) << onArc;
            if (scale < 2)
                continue; // of a larger pixel's colour the arcs have a part
            for (const double gap : {139.5, 319.5})
                EXPECT_EQ(at(image, scale, 4.8, gap - turn), blue) << gap;
        }
}

TEST(StatusItemTest, theAnimationShowsSixteenFramesInTurnAndNeverTwoAtOnce) {
    std::vector<qint64> shown;
    MenuBarIconAnimator animator([&](const QIcon& icon) { shown.push_back(icon.cacheKey()); });
    QElapsedTimer timer;
    timer.start();
    animator.start(22);
    animator.start(22);
    ASSERT_EQ(animator.frames().size(), 16U);
    EXPECT_EQ(animator.frames()[0].availableSizes(), QList<QSize>{QSize(22, 22)});
    ASSERT_TRUE(waitOnMainThread([&] { return shown.size() == 19; }));
    animator.stop();
    EXPECT_GE(timer.elapsed(), 17 * 84 - 20);
    EXPECT_EQ(shown[0], shown[1]); // the second start began anew
    EXPECT_EQ(shown[2], animator.frames()[1].cacheKey());
    EXPECT_EQ(shown[17], shown[1]);
    const auto before = shown.size();
    waitOnMainThread([&] { return timer.elapsed() > 20 * 84; });
    EXPECT_EQ(shown.size(), before);
}

TEST(StatusItemTest, theItemFollowsTheSync) {
    WindowWorld world;
    world.world.addPictures(2);
    world.openLibrary();
    world.signIn();
    FixedHost host(true);
    MenuBarController controller(*world.model, world.window, host);
    controller.setupStatusItem();
    QMenu& menu = *controller.statusItem()->contextMenu();
    EXPECT_EQ(controller.statusItem()->toolTip(), u"Quorvane"_s);
    EXPECT_EQ(menu.actions().at(1)->text(), u"Şimdi Eşitle"_s);
    world.world.google.addDisturbance(stall(emulator::RequestKind::upload));
    menu.actions().at(1)->trigger();
    EXPECT_TRUE(controller.animator().isRunning());
    EXPECT_EQ(controller.statusItem()->toolTip(), u"Eşitleme devam ediyor..."_s);
    EXPECT_EQ(menu.actions().at(1)->text(), u"Eşitlemeyi Durdur"_s);
    menu.actions().at(1)->trigger();
    EXPECT_FALSE(controller.animator().isRunning());
    ASSERT_TRUE(world.settle());
}

TEST(StatusItemTest, theWindowOpensWhereThereIsNoPlaceForTheItem) {
    WindowWorld world;
    FixedHost host(false);
    MenuBarController controller(*world.model, world.window, host);
    controller.setupStatusItem();
    EXPECT_EQ(controller.statusItem(), nullptr);
    ASSERT_TRUE(world.awaitView(
        [&] { return world.window.window() != nullptr && world.window.window()->isVisible(); }));
    EXPECT_FALSE(world.window.dashboard().hint().isEmpty());
    int quits = 0;
    QObject::connect(&world.window, &MainWindowController::quitRequested, &controller,
                     [&] { ++quits; });
    world.click(u"quit"_s);
    EXPECT_EQ(quits, 1);
}

/// On a desktop with a tray only: with QT_QPA_PLATFORM=xcb, a tray host and xdotool.
TEST(StatusItemTest, aTrayShowsItAndTakesClicks) {
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        GTEST_SKIP() << "no tray on this platform";
    WindowWorld world;
    world.world.addPictures(2);
    world.openLibrary();
    world.signIn();
    world.window.prepare();
    FixedHost host(true);
    MenuBarController controller(*world.model, world.window, host);
    controller.setupStatusItem();
    const QSystemTrayIcon& item = *controller.statusItem();
    ASSERT_TRUE(waitOnMainThread([&] { return item.geometry().width() > 8; }));
    const auto point = [&](int button) {
        const QPoint middle =
            item.geometry().center() * QGuiApplication::primaryScreen()->devicePixelRatio();
        QProcess::execute(u"xdotool"_s,
                          {u"mousemove"_s, QString::number(middle.x()), QString::number(middle.y()),
                           u"click"_s, QString::number(button)});
    };
    const auto isShown = [&] { return world.window.window()->isVisible(); };
    const auto shoot = [](const QString& name) {
        QElapsedTimer timer;
        timer.start();
        waitOnMainThread([&] { return timer.elapsed() > 400; });
        savePicture(QGuiApplication::primaryScreen()->grabWindow().toImage(), name);
    };
    shoot(u"tray-idle"_s);
    QElapsedTimer timer;
    timer.start();
    point(1);
    ASSERT_TRUE(waitOnMainThread(isShown));
    RecordProperty("shown", static_cast<int>(timer.elapsed()));
    world.world.google.addDisturbance(stall(emulator::RequestKind::upload));
    world.model->triggerSync();
    EXPECT_TRUE(controller.animator().isRunning());
    shoot(u"tray-syncing-1"_s);
    shoot(u"tray-syncing-2"_s);
    world.model->stopSync();
    ASSERT_TRUE(world.settle());
    ASSERT_TRUE(waitOnMainThread([&] { return world.window.window()->isActive(); }));
    point(1);
    EXPECT_TRUE(waitOnMainThread([&] { return !isShown(); }));
    bool wasOpened = false;
    QObject::connect(item.contextMenu(), &QMenu::aboutToShow, [&] { wasOpened = true; });
    point(3);
    EXPECT_TRUE(waitOnMainThread([&] { return wasOpened; }));
    shoot(u"tray-menu"_s);
    item.contextMenu()->close();
}

TEST(SymbolsTest, everySymbolHasAnOutlineOnItsGrid) {
    QFile table(u":/Quorvane/symbols.tsv"_s);
    ASSERT_TRUE(table.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(table.readAll()).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_GT(lines.size(), 30);
    for (const QString& line : lines.sliced(1)) {
        const QRectF bounds = symbols::outline(line.section(u'\t', 0, 0)).boundingRect();
        EXPECT_FALSE(bounds.isEmpty()) << line.toStdString();
        EXPECT_TRUE(QRectF(1.5, 1.5, 21, 21).contains(bounds)) << line.toStdString();
    }
    struct Row {
        QString path;
        QRectF bounds;
    };
    for (const Row& row : {Row{u"M1 2l3 0v4H1z"_s, QRectF(1, 2, 3, 4)},
                           Row{u"M4 12a8 8 0 1016 0 8 8 0 10-16 0z"_s, QRectF(4, 4, 16, 16)},
                           Row{u"M0 0c0 3 6 3 6 0"_s, QRectF(0, 0, 6, 2.25)}}) {
        const auto path = parseSvgPath(row.path);
        ASSERT_TRUE(path) << row.path.toStdString();
        const QRectF bounds = path->boundingRect();
        EXPECT_NEAR(bounds.top(), row.bounds.top(), 0.05) << row.path.toStdString();
        EXPECT_NEAR(bounds.width(), row.bounds.width(), 0.05) << row.path.toStdString();
        EXPECT_NEAR(bounds.height(), row.bounds.height(), 0.05) << row.path.toStdString();
    }
    for (const QString& wrong : {u"M1"_s, u"Q1 1 2 2"_s, u"M0 0a1 2 0 0 0 1 1"_s, u"M0 0l1 x"_s})
        EXPECT_FALSE(parseSvgPath(wrong)) << wrong.toStdString();
}

} // namespace

} // namespace quorvane::test
