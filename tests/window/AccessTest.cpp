#include "window/WindowWorld.h"

#include <QAccessible>
#include <QQmlComponent>
#include <QQmlEngine>

#include <gtest/gtest.h>

#include <cmath>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

double luminance(const QColor& color) {
    const auto part = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) +
           0.0722 * part(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const auto [low, high] = std::minmax({luminance(a), luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

TEST(AccessTest, everyTextCanBeReadInBothThemes) {
    WindowWorld world;
    world.window.prepare();
    QQmlEngine& engine = *world.window.window()->engine();
    QQmlComponent component(&engine);
    component.setData("import QtQml; import Quorvane; QtObject { property var theme: Theme }", {});
    const std::unique_ptr<QObject> holder(component.create());
    auto* theme = holder->property("theme").value<QObject*>();
    ASSERT_NE(theme, nullptr);
    struct Row {
        double least;
        QStringList inks, grounds;
    };
    const std::vector<Row> table{
        {4.5,
         {u"textPrimary"_s, u"textSecondary"_s, u"textTertiary"_s},
         {u"window"_s, u"surface"_s, u"panel"_s}},
        {4.5,
         {u"textPrimary"_s, u"textSecondary"_s, u"accentText"_s},
         {u"surfaceHover"_s, u"accentTint"_s}},
        {4.5, {u"textPrimary"_s}, {u"surfacePressed"_s, u"successTint"_s}},
        {4.5, {u"inkOnAccent"_s}, {u"accent"_s, u"accentHover"_s, u"accentPressed"_s}},
        {4.5, {u"accentText"_s, u"success"_s, u"danger"_s}, {u"surface"_s, u"panel"_s}},
        {4.5, {u"success"_s}, {u"successTint"_s}},
        {4.5, {u"warning"_s, u"textSecondary"_s}, {u"warningTint"_s}},
        {4.5, {u"danger"_s, u"textSecondary"_s}, {u"dangerTint"_s}},
        {4.5,
         {u"logTime"_s, u"logInfo"_s, u"logNetwork"_s, u"logSuccess"_s, u"logWarning"_s,
          u"logError"_s},
         {u"console"_s}},
        {3, {u"focus"_s, u"controlOff"_s, u"progress"_s}, {u"surface"_s, u"window"_s}},
        {3, {u"warningIcon"_s}, {u"warningTint"_s, u"surface"_s}},
    };
    for (const AppTheme appTheme : {AppTheme::light, AppTheme::dark}) {
        world.window.applyTheme(appTheme);
        const auto color = [&](const QString& name) {
            return theme->property(name.toLatin1().constData()).value<QColor>();
        };
        for (const Row& row : table)
            for (const QString& ink : row.inks)
                for (const QString& ground : row.grounds)
                    EXPECT_GE(contrast(color(ink), color(ground)), row.least)
                        << ink.toStdString() << " on " << ground.toStdString() << " in "
                        << rawValue(appTheme).toStdString();
    }
}

class KeyboardTest : public testing::Test, public WindowWorld {};

TEST_F(KeyboardTest, tabReachesEveryControlInOrderAndEachHasItsName) {
    world.addPictures(2);
    world.google.addAlbum(u"Aile"_s, 19'640);
    emulator::Disturbance fault = faultOf(emulator::RequestKind::upload);
    fault.status = 400;
    world.google.addDisturbance(fault);
    openLibrary();
    signIn();
    model->selectTargetAlbum(model->googleAlbums().at(0).id);
    model->triggerSync();
    ASSERT_TRUE(settle());
    world.google.change([](emulator::Behaviour& google) { google.listingForbidden = true; });
    model->loadGoogleAlbums();
    browser.answer = [] {
        return QUrl(u"com.googleusercontent.apps.1234-abcd:/oauth2redirect?error=access_denied"_s);
    };
    model->reauthorizeGoogle();
    model->toggleInspector();
    window.showWindowAndCenter();
    settleView();
    struct Control {
        QString item, name;
        QAccessible::Role role;
    };
    using enum QAccessible::Role;
    const std::vector<Control> table{
        {u"source"_s, u"Kaynak (Apple Photos): Fotoğraf & Video Arşivi (2)"_s, Button},
        {u"target"_s, u"Hedef (Google Photos): Aile"_s, Button},
        {u"dismissError"_s, u"Kapat"_s, Button},
        {u"renewAccess"_s, u"İzni Yenile (Giriş Yap)"_s, Button},
        {u"reloadAlbums"_s, u"Google Albümlerini Yenile"_s, Button},
        {u"runReport"_s, u"Son eşitlemenin raporu"_s, Button},
        {u"quarantineLink"_s, u"1 öğe inceleme bekliyor"_s, Button},
        {u"start"_s, u"Tekrar Dene"_s, Button},
        {u"deletion"_s, u"Yedeklenenleri Mac'ten Temizle"_s, CheckBox},
        {u"logFile"_s, u"Günlük Dosyasını Aç..."_s, Button},
        {u"theme"_s, u"Tema"_s, Button},
        {u"inspectorToggle"_s, u"Ağ Denetçisi"_s, Button},
        {u"settings"_s, u"Ayarlar"_s, Button},
        {u"quit"_s, u"Çıkış"_s, Button},
        {u"inspectorClose"_s, u"Kapat"_s, Button},
        {u"saveReport"_s, u"Raporu Kaydet…"_s, Button},
        {u"clearLog"_s, u"Temizle"_s, Button},
        {u"console"_s, u"Canlı Akış Konsolu"_s, List},
    };
    for (const Control& row : table) {
        key(Qt::Key_Tab);
        EXPECT_EQ(focus(), row.item);
        QQuickItem* item = find(row.item);
        ASSERT_NE(item, nullptr) << row.item.toStdString();
        QAccessibleInterface* access = QAccessible::queryAccessibleInterface(item);
        ASSERT_NE(access, nullptr) << row.item.toStdString();
        EXPECT_TRUE(access->text(QAccessible::Name).startsWith(row.name))
            << access->text(QAccessible::Name).toStdString();
        EXPECT_EQ(access->role(), row.role) << row.item.toStdString();
        const QRectF place = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
        EXPECT_TRUE(QRectF(QPointF(), window.window()->size()).contains(place))
            << "out of sight: " << row.item.toStdString();
    }
    shot(u"focus-console-light"_s);
    key(Qt::Key_Tab);
    EXPECT_EQ(focus(), u"source"_s) << "the order is a circle";
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focus(), u"console"_s);
}

TEST_F(KeyboardTest, theKeyboardDoesWhatThePointerDoes) {
    openLibrary();
    signIn();
    window.showWindowAndCenter();
    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Tab);
    EXPECT_EQ(focus(), u"start"_s);
    key(Qt::Key_Tab);
    key(Qt::Key_Space);
    EXPECT_TRUE(model->isAutoDeleteEnabled());
    key(Qt::Key_Return);
    EXPECT_FALSE(model->isAutoDeleteEnabled());
    key(Qt::Key_Tab);
    key(Qt::Key_Return);
    EXPECT_EQ(desktop.opened.filename(), "quorvane.log");
    key(Qt::Key_Tab);
    shot(u"focus-theme-light"_s);
    key(Qt::Key_Space);
    QAccessibleInterface* row = QAccessible::queryAccessibleInterface(find(u"menuRow0"_s));
    EXPECT_EQ(row->role(), QAccessible::MenuItem);
    EXPECT_TRUE(row->state().checkable && row->state().checked);
    QAccessibleInterface* ring = QAccessible::queryAccessibleInterface(find(u"ringValue"_s));
    EXPECT_EQ(ring->role(), QAccessible::ProgressBar);
    ASSERT_NE(ring->valueInterface(), nullptr);
    EXPECT_EQ(ring->valueInterface()->currentValue(), 0);
    EXPECT_EQ(ring->text(QAccessible::Name), window.dashboard().hero().ringName);
    ASSERT_NE(ring->parent(), nullptr);
    EXPECT_NE(ring->parent()->indexOfChild(ring), -1);
    for (const auto& [item, action] :
         {std::pair{u"deletion"_s, u"Toggle"_s}, {u"inspectorToggle"_s, u"Press"_s}})
        QAccessible::queryAccessibleInterface(find(item))->actionInterface()->doAction(action);
    EXPECT_TRUE(model->isAutoDeleteEnabled() && model->isInspectorOpen()) << "assistive technology";
    model->toggleInspector();
    settleView();
    type(u"k"_s);
    EXPECT_EQ(focus(), u"menuRow2"_s) << "a typed letter finds its row";
    key(Qt::Key_Return);
    EXPECT_EQ(model->appTheme(), AppTheme::dark);
    EXPECT_EQ(focus(), u"theme"_s) << "the focus returns to what opened the menu";

    // The console holds its place while it is scrolled back, and follows at its end.
    for (int i = 0; i < 100; ++i)
        logPublisher.send(
            {.id = {}, .timestamp = clock.now(), .message = u"satır"_s, .level = LogLevel::info});
    model->toggleInspector();
    ASSERT_TRUE(awaitView([&] { return model->recentLogs()->rowCount() >= 100; }));
    settleView();
    QQuickItem* lines = find(u"console"_s);
    EXPECT_TRUE(lines->property("atYEnd").toBool());
    lines->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_PageUp);
    const double place = lines->property("contentY").toDouble();
    const auto addLine = [&] {
        const int rows = model->recentLogs()->rowCount();
        logPublisher.send(
            {.id = {}, .timestamp = clock.now(), .message = u"yeni"_s, .level = LogLevel::error});
        ASSERT_TRUE(awaitView([&] { return model->recentLogs()->rowCount() > rows; }));
        settleView();
    };
    addLine();
    EXPECT_NEAR(lines->property("contentY").toDouble(), place, 1);
    key(Qt::Key_End);
    addLine();
    EXPECT_TRUE(lines->property("atYEnd").toBool());
}

TEST_F(KeyboardTest, onAShortScreenNothingLiesBelow) {
    for (int i = 0; i < 30; ++i)
        world.google.addAlbum(u"Albüm %1"_s.arg(i), i);
    openLibrary();
    signIn();
    window.showWindowAndCenter();
    QQuickView& view = *window.window();
    const QSize size(440, 432); // 1920 by 1080 at 200 %, with a title bar and a panel
    view.setMinimumSize(size);
    view.setMaximumSize(size);
    view.resize(size);
    const auto expectInside = [&](const QStringList& names) {
        for (const QString& name : names) {
            QQuickItem* item = find(name);
            ASSERT_NE(item, nullptr) << name.toStdString();
            const QRectF place = item->mapRectToScene(QRectF(QPointF(), item->size()));
            EXPECT_TRUE(QRectF(QPointF(), size).contains(place)) << name.toStdString();
        }
    };
    struct Row {
        QString opener;
        QStringList shown;
    };
    for (const Row& row :
         {Row{u"settings"_s, {u"settingsClose"_s, u"checkSession"_s}},
          Row{u"target"_s, {u"menuRow0"_s, u"quit"_s}}, Row{u"theme"_s, {u"menuRow2"_s}}}) {
        click(row.opener);
        expectInside(row.shown);
        key(Qt::Key_End);
        expectInside({focus()});
        key(Qt::Key_Escape);
    }
    find(u"deletion"_s)->forceActiveFocus(Qt::TabFocusReason);
    settleView();
    expectInside({u"deletion"_s});
    shot(u"short-screen-light"_s);
}

} // namespace

} // namespace quorvane::test
