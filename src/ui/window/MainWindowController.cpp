#include "ui/window/MainWindowController.h"

#include "ui/window/Progress.h"
#include "ui/window/Thumbnails.h"

#include <QAccessible>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>
#include <QQmlEngine>
#include <QQuickItem>
#include <QScreen>
#include <QWidget>

void qml_register_types_Quorvane();

/// What a static library holds is linked only when somebody names it, from outside any namespace.
static void registerQml() {
    Q_INIT_RESOURCE(qmlcache_quorvane_window);
    qml_register_types_Quorvane();
}

namespace quorvane {

namespace {

constexpr int resizeTime = 220; // milliseconds
constexpr int saveDelay = 1000; // milliseconds after the last move
/// Of the desktop, above or below the windows, where the screen tells of none: under Wayland no
/// screen does.
constexpr int panel = 32;
const QString frameKey = QStringLiteral("QuorvaneMainWindow");

/// Has a screen reader say it. Before 6.8 the toolkit has no way to, and only the changed names of
/// the ring and the title tell.
void announce([[maybe_unused]] QQuickItem* about, [[maybe_unused]] const QString& text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(about, text);
    QAccessible::updateAccessibility(&event);
#endif
}

void useWindowFont() {
    const QString family = QStringLiteral("Inter");
    if (!QFontDatabase::hasFamily(family))
        return;
    QFont font = QGuiApplication::font();
    font.setFamilies({family, QStringLiteral("Noto Color Emoji"), font.family()});
    QGuiApplication::setFont(font);
}

} // namespace

MainWindowController::MainWindowController(MenuBarViewModel& model, AutoSync& automatic,
                                           Preferences& preferences)
    : model_(model),
      preferences_(preferences),
      dashboard_(model, automatic),
      theme_(model.appTheme()) {
    connect(&dashboard_, &Dashboard::chooseLibraryRequested, this,
            &MainWindowController::chooseLibraryRequested);
    connect(dashboard_.lives(), &InspectorModel::reportRequested, this,
            &MainWindowController::reportRequested);
    connect(dashboard_.runReport(), &RunReportModel::requested, this,
            &MainWindowController::runReportRequested);
    connect(&dashboard_, &Dashboard::quitRequested, this, &MainWindowController::quitRequested);
    connect(&model_, &MenuBarViewModel::inspectorToggled, this,
            [this] { setInspectorExpanded(model_.isInspectorOpen(), true); });
    connect(&model_, &MenuBarViewModel::settingsChanged, this,
            [this] { applyTheme(model_.appTheme()); });
    resizing_.setDuration(resizeTime);
    resizing_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&resizing_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& frame) { resizeTo(frame.toRect()); });
    qApp->installEventFilter(this);
}

MainWindowController::~MainWindowController() {
    qApp->removeEventFilter(this);
    if (saving_.isActive())
        saveFrame();
}

void MainWindowController::prepare() {
    if (view_)
        return;
    // A window this small and still needs no graphics driver, whose start takes longer than its
    // own.
    if (QQuickWindow::sceneGraphBackend().isEmpty() &&
        !qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    registerQml();
    Progress::makeAccessible();
    useWindowFont();
    view_ = std::make_unique<QQuickView>();
    view_->engine()->addImportPath(QStringLiteral(":/"));
    view_->engine()->addImageProvider(QStringLiteral("thumbnails"), new Thumbnails); // its own now
    view_->setTitle(QStringLiteral("Quorvane"));
    view_->setResizeMode(QQuickView::SizeRootObjectToView);
    view_->setFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                    Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint);
    view_->setInitialProperties({{QStringLiteral("dashboard"), QVariant::fromValue(&dashboard_)},
                                 {QStringLiteral("dark"), isDark()},
                                 {QStringLiteral("motion"), reducesMotion_ ? 0 : 1}});
    view_->setSource(QUrl(QStringLiteral("qrc:/Quorvane/Main.qml")));
    connect(view_.get(), &QWindow::visibilityChanged, this, [this](QWindow::Visibility visibility) {
        dashboard_.setLive(visibility != QWindow::Hidden && visibility != QWindow::Minimized);
    });
    connect(view_.get(), &QWindow::windowStateChanged, this, [this] {
        view_->setMaximumSize(fillsScreen() ? QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)
                                            : view_->minimumSize());
    });
    connect(&model_, &MenuBarViewModel::stateChanged, this, [this] {
        const QString title = titleOf(model_.state(), model_.facts());
        if (dashboard_.isLive() && std::exchange(announced_, title) != title)
            announce(view_->rootObject(), title);
    });
    saving_.setSingleShot(true);
    saving_.setInterval(saveDelay);
    connect(&saving_, &QTimer::timeout, this, &MainWindowController::saveFrame);
    for (const auto moved : {&QWindow::xChanged, &QWindow::yChanged, &QWindow::widthChanged})
        connect(view_.get(), moved, &saving_, [this] {
            if (view_->isVisible()) // where it was before nobody saw it says nothing
                saving_.start();
        });
    updateLook();
    resizeTo(QRect(view_->position(), QSize(wantedWidth(), height)));
}

int MainWindowController::wantedWidth() const {
    return model_.isInspectorOpen() ? wideWidth : narrowWidth;
}

/// Of the screen that the window is on, or was on when it was last hidden.
QRect MainWindowController::availableGeometry() const {
    const QScreen* screen = view_->isVisible() ? view_->screen() : nullptr;
    const QStringList stored =
        preferences_.string(frameKey).value_or(QString()).split(QLatin1Char(' '));
    if (screen == nullptr && stored.size() == 4)
        screen = QGuiApplication::screenAt(
            QRect(stored[0].toInt(), stored[1].toInt(), stored[2].toInt(), stored[3].toInt())
                .center());
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    if (screen == nullptr)
        return {0, 0, wideWidth, height};
    const QRect available = screen->availableGeometry();
    return available == screen->geometry() ? available.adjusted(0, panel, 0, -panel) : available;
}

/// Of the title bar and the borders; before the window was ever shown nobody can tell.
QMargins MainWindowController::frameMargins() const {
    constexpr QMargins usual(0, 40, 0, 4);
    const QMargins told = view_->frameMargins();
    return told.isNull() ? usual : told;
}

void MainWindowController::showWindowAndCenter() {
    prepare();
    resizing_.stop();
    const QRect available = availableGeometry().marginsRemoved(frameMargins());
    QRect frame(0, 0, wantedWidth(), std::min(height, available.height()));
    frame.moveCenter(available.center());
    resizeTo(frame);
    view_->show();
    view_->raise();
    view_->requestActivate();
    saving_.start();
}

void MainWindowController::toggleWindow() {
    if (view_ && view_->isVisible() && view_->isActive()) {
        saveFrame();
        view_->hide();
    } else {
        showWindowAndCenter();
    }
}

void MainWindowController::setInspectorExpanded(bool expanded, bool animate) {
    if (!view_)
        return;
    const QRect available = availableGeometry();
    QRect frame = view_->geometry();
    frame.setWidth(expanded ? wideWidth : narrowWidth);
    frame.moveLeft(
        std::max(available.left(), std::min(frame.left(), available.right() + 1 - frame.width())));
    resizing_.stop();
    if (!animate || reducesMotion_ || !view_->isVisible()) {
        resizeTo(frame);
        return;
    }
    resizing_.setStartValue(view_->geometry());
    resizing_.setEndValue(frame);
    resizing_.start();
}

/// A Wayland compositor may have the window fill the screen, and ends the connection of who does
/// not obey.
bool MainWindowController::fillsScreen() const {
    return (view_->windowStates() & (Qt::WindowMaximized | Qt::WindowFullScreen)) != 0;
}

/// The window has a title and a close button, and only the program changes its size.
void MainWindowController::resizeTo(QRect frame) {
    if (fillsScreen())
        return;
    view_->setMinimumSize(frame.size());
    view_->setMaximumSize(frame.size());
    view_->setGeometry(frame);
}

void MainWindowController::saveFrame() {
    const QRect frame = view_->geometry();
    try {
        preferences_.setString(frameKey, QStringLiteral("%1 %2 %3 %4")
                                             .arg(frame.x())
                                             .arg(frame.y())
                                             .arg(frame.width())
                                             .arg(frame.height()));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch)
        // Where the window was is a convenience: the next one opens on the first screen.
    }
}

// The look.

void MainWindowController::applyTheme(AppTheme theme) {
    theme_ = theme;
    updateLook();
}

void MainWindowController::setReducesMotion(bool reduces) {
    reducesMotion_ = reduces;
    updateLook();
}

void MainWindowController::setSystemIsDark(std::optional<bool> isDark) {
    systemIsDark_ = isDark;
    updateLook();
}

bool MainWindowController::isDark() const {
    if (theme_ != AppTheme::system)
        return theme_ == AppTheme::dark;
    if (systemIsDark_)
        return *systemIsDark_;
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

void MainWindowController::updateLook() {
    if (!view_ || view_->rootObject() == nullptr)
        return;
    view_->rootObject()->setProperty("dark", isDark());
    view_->rootObject()->setProperty("motion", reducesMotion_ ? 0.0 : 1.0);
    view_->setColor(isDark() ? QColor(0x15, 0x18, 0x1D) : QColor(0xF3, 0xF5, 0xF8));
}

bool MainWindowController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        updateLook();
    if (view_ && watched == view_.get() && event->type() == QEvent::Close) {
        saveFrame();
        view_->hide();
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace quorvane
