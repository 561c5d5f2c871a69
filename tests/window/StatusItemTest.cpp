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

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

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
    waitOnMainThread([&] { return timer.elapsed() > qint64{20} * 84; });
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
    QElapsedTimer timer;
    timer.start();
    waitOnMainThread([&] { return timer.elapsed() > 600; }); // the tray finds its place
    point(1);
    ASSERT_TRUE(waitOnMainThread(isShown));
    ASSERT_TRUE(waitOnMainThread([&] { return world.window.window()->isActive(); }));
    point(1);
    EXPECT_TRUE(waitOnMainThread([&] { return !isShown(); }));
    bool wasOpened = false;
    QObject::connect(item.contextMenu(), &QMenu::aboutToShow, [&] { wasOpened = true; });
    point(3);
    EXPECT_TRUE(waitOnMainThread([&] { return wasOpened; }));
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
    for (const QString& wrong : {u"M1"_s, u"Q1 1 2 2"_s, u"M0 0a1 2 0 0 0 1 1"_s, u"M0 0l1 x"_s})
        EXPECT_FALSE(parseSvgPath(wrong)) << wrong.toStdString();
}

} // namespace

} // namespace quorvane::test
