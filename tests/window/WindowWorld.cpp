#include "window/WindowWorld.h"

#include "foundation/File.h"
#include "support/TemporaryFolder.h"

#include <QTest>

#include <gtest/gtest.h>

namespace quorvane::test {

void forEachVisible(QQuickItem* item, const std::function<void(QQuickItem*)>& visit) {
    if (item == nullptr || !item->isVisible() || item->opacity() <= 0)
        return;
    visit(item);
    for (QQuickItem* child : item->childItems())
        forEachVisible(child, visit);
}

WindowWorld::WindowWorld() {
    window.setReducesMotion(true);
}

QQuickItem* WindowWorld::find(const QString& objectName) {
    QQuickItem* found = nullptr;
    forEachVisible(window.window()->contentItem(), [&](QQuickItem* item) {
        if (item->objectName() == objectName)
            found = item;
    });
    return found;
}

void WindowWorld::click(const QString& objectName) {
    settleView();
    QQuickItem* item = find(objectName);
    ASSERT_NE(item, nullptr) << objectName.toStdString();
    for (QQuickItem* around = item->parentItem(); around; around = around->parentItem())
        if (around->inherits("QQuickFlickable")) {
            const double below =
                item->mapToItem(around, QPointF(0, item->height())).y() - around->height();
            if (below > 0)
                around->setProperty("contentY", around->property("contentY").toDouble() + below);
        }
    const QPointF middle = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    QTest::mouseClick(window.window(), Qt::LeftButton, Qt::NoModifier, middle.toPoint());
    settleView();
}

void WindowWorld::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window.window(), key, modifiers);
    settleView();
}

void WindowWorld::type(const QString& text) {
    for (const QChar character : text)
        QTest::sendKeyEvent(QTest::Click, window.window(), Qt::Key_unknown, QString(character),
                            Qt::NoModifier);
    settleView();
}

void WindowWorld::choose(const QString& opener, const QString& title) {
    click(opener);
    QString row;
    forEachVisible(window.window()->contentItem(), [&](QQuickItem* item) {
        if (item->objectName().startsWith(QStringLiteral("menuRow")) &&
            item->property("title") == title)
            row = item->objectName();
    });
    ASSERT_FALSE(row.isEmpty()) << title.toStdString();
    click(row);
}

QStringList WindowWorld::texts() {
    QStringList texts;
    forEachVisible(window.window()->contentItem(), [&](QQuickItem* item) {
        if (const QVariant text = item->property("text"); item->inherits("QQuickText"))
            texts += text.toString();
    });
    return texts;
}

QString WindowWorld::focus() {
    const QQuickItem* item = window.window()->activeFocusItem();
    while (item != nullptr && item->objectName().isEmpty())
        item = item->parentItem(); // of a list, its row has the keyboard
    return item == nullptr ? QString() : item->objectName();
}

bool WindowWorld::awaitView(const std::function<bool()>& condition) {
    const bool holds = waitOnMainThread(condition);
    window.window()->grabWindow();
    return holds;
}

void WindowWorld::settleView() {
    const bool isAtConsentPage = model->account().isSigningIn() && browser.answer;
    ASSERT_TRUE(model->isSyncing() || isAtConsentPage || settle());
    // What is drawn may ask for more, which is drawn then.
    for (int frame = 0; frame < 3; ++frame) {
        ASSERT_TRUE(waitOnMainThread([&] {
            return !window.dashboard().review()->isWorking() &&
                   !window.dashboard().lives()->isWorking();
        }));
        QCoreApplication::processEvents();
        window.window()->grabWindow(); // polishes and draws
        QCoreApplication::processEvents();
    }
}

void WindowWorld::shot(const QString& name) {
    QTest::mouseMove(window.window(), QPoint(1, 1)); // nothing is hovered
    settleView();
    savePicture(window.window()->grabWindow(), name);
    const QString light = QStringLiteral("-light");
    if (!name.endsWith(light))
        return;
    window.applyTheme(AppTheme::dark);
    settleView();
    savePicture(window.window()->grabWindow(),
                name.chopped(light.size()) + QStringLiteral("-dark"));
    window.applyTheme(model->appTheme());
    settleView();
}

void savePicture(const QImage& picture, const QString& name) {
    const QString asked = qEnvironmentVariable("QUORVANE_WINDOW_SHOTS");
    const std::filesystem::path folder =
        asked.isEmpty() ? sourceFolder() / "build" / "screenshots" : pathFrom(asked);
    std::filesystem::create_directories(folder);
    EXPECT_TRUE(picture.save(pathText(folder / pathFrom(name)) + QStringLiteral(".png")));
}

} // namespace quorvane::test
