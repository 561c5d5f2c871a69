#include "ui/window/MenuBarController.h"

#include "ui/window/StatusBadge.h"

#include <QGuiApplication>
#include <QScreen>

#include <cmath>

namespace quorvane {

namespace {

// At the start of a session the panel may come up later than this program.
constexpr std::chrono::seconds hostPatience{3};
constexpr std::chrono::milliseconds sizePatience{500}; ///< for a tray to take the item in
constexpr int usualSide = 22; // points; panels that tell no size use about this much

struct Badge {
    QString symbol;
    QRgb color;
    double stroke = 2;
};

/// Of a state that does not move.
Badge badgeOf(SyncVisualState state) {
    switch (state) {
    case SyncVisualState::error:
        return {QStringLiteral("exclamationmark.circle.fill"), badgeRed};
    case SyncVisualState::waiting:
        return {QStringLiteral("x.pause"), badgeAmber, 3};
    case SyncVisualState::signedOut:
        return {QStringLiteral("x.person"), badgeGrey, 2.4};
    case SyncVisualState::idle:
    case SyncVisualState::syncing:
        break;
    }
    return {QStringLiteral("photo.on.rectangle"), badgeBlue};
}

QString toolTipOf(ProductState state, const ProductFacts& facts) {
    if (state == ProductState::sessionLapsed)
        return QStringLiteral("Oturumun süresi doldu");
    if (state == ProductState::running)
        return QStringLiteral("Eşitleme devam ediyor...");
    return visualStateOf(state) == SyncVisualState::idle && state != ProductState::heldBack
               ? QStringLiteral("Quorvane")
               : titleOf(state, facts);
}

} // namespace

MenuBarController::MenuBarController(MenuBarViewModel& model, MainWindowController& window,
                                     StatusHost& host)
    : model_(model),
      window_(window),
      host_(host),
      animator_([this](const QIcon& frame) { item_->setIcon(frame); }) {}

void MenuBarController::setupStatusItem() {
    buildMenu();
    observeViewModel();
    host_.await([this] { showItem(); });
    if (!item_)
        QTimer::singleShot(hostPatience, this, &MenuBarController::openWindowInstead);
}

void MenuBarController::showItem() {
    item_ = std::make_unique<QSystemTrayIcon>();
    item_->setContextMenu(&menu_);
    connect(item_.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    statusItemClicked();
            });
    updateStatusItemIcon(model_.syncState());
    item_->show();
    QTimer::singleShot(sizePatience, this, [this] { updateStatusItemIcon(model_.syncState()); });
    if (opensInstead_)
        window_.dashboard().setHint({});
}

void MenuBarController::openWindowInstead() {
    if (item_)
        return;
    opensInstead_ = true;
    window_.dashboard().setHint(QStringLiteral(
        "Bu masaüstünde durum çubuğu yok: pencereyi kapatınca Quorvane çalışmayı sürdürür, "
        "çıkmak için güç simgesine basın."));
    window_.showWindowAndCenter();
}

void MenuBarController::observeViewModel() {
    connect(&model_, &MenuBarViewModel::stateChanged, this, [this] {
        if (shownState_ != model_.syncState())
            updateStatusItemIcon(model_.syncState());
        updateToolTip();
        updateMenu();
    });
    updateStatusItemIcon(model_.syncState());
    updateMenu();
}

/// The side of the item on the screen.
int MenuBarController::itemPixels() const {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double scale = screen == nullptr ? 1 : screen->devicePixelRatio();
    const QSize shown = item_->geometry().size();
    const int points =
        shown.isValid() && !shown.isEmpty() ? std::min(shown.width(), shown.height()) : usualSide;
    return static_cast<int>(std::lround(points * scale));
}

void MenuBarController::updateStatusItemIcon(SyncVisualState state) {
    shownState_ = state;
    if (!item_)
        return;
    updateToolTip();
    const int pixels = itemPixels();
    if (state == SyncVisualState::syncing) {
        animator_.start(pixels);
        return;
    }
    animator_.stop();
    const Badge badge = badgeOf(state);
    item_->setIcon(QIcon(QPixmap::fromImage(drawSymbolBadge(badge.symbol, MenuBarIconAnimator::side,
                                                            pixels / MenuBarIconAnimator::side,
                                                            badge.color, badge.stroke))));
}

void MenuBarController::updateToolTip() {
    const QString text = toolTipOf(model_.state(), model_.facts());
    if (item_ && item_->toolTip() != text)
        item_->setToolTip(text);
}

void MenuBarController::statusItemClicked() {
    window_.toggleWindow();
}

void MenuBarController::buildMenu() {
    connect(menu_.addAction(QStringLiteral("Quorvane'i Aç")), &QAction::triggered, &window_,
            &MainWindowController::showWindowAndCenter);
    syncAction_ = menu_.addAction(QString());
    connect(syncAction_, &QAction::triggered, this, [this] {
        if (model_.isSyncing()) {
            model_.stopSync();
            return;
        }
        model_.triggerSync();
        if (!model_.isSyncing())
            window_.showWindowAndCenter(); // it has a question, or says why not
    });
    menu_.addSeparator();
    connect(menu_.addAction(QStringLiteral("Çıkış")), &QAction::triggered, this, [this] {
        if (model_.isSyncing())
            window_.showWindowAndCenter(); // it asks
        window_.dashboard().quit();
    });
}

void MenuBarController::updateMenu() {
    syncAction_->setText(model_.isSyncing() ? QStringLiteral("Eşitlemeyi Durdur")
                                            : QStringLiteral("Şimdi Eşitle"));
    syncAction_->setEnabled(model_.isSyncing() || model_.isSignedIn());
}

} // namespace quorvane
