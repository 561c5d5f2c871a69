#include "app/gui/QuorvaneApp.h"

#include "app/RunLock.h"

#include <QApplication>

namespace quorvane {

QuorvaneApp::QuorvaneApp(const DesktopEnvironment& environment) : environment_(environment) {
    library_.onOpened = [this](std::shared_ptr<const LibrarySession> session) {
        model_.setLibrary(std::move(session));
    };
    library_.onChanged = [this] { model_.libraryDidChange(); };
    QObject::connect(&window_, &MainWindowController::chooseLibraryRequested, &model_, [this] {
        chooseLibrary([this](AuthorizationStatus) { library_.startObserver(); });
    });
    QObject::connect(&window_, &MainWindowController::quitRequested, qApp, &QApplication::quit);
    QObject::connect(&look_, &DesktopLook::changed, &window_, [this] {
        window_.setReducesMotion(look_.reducesMotion());
        window_.setSystemIsDark(look_.isDark());
    });
    look_.watch();
}

QuorvaneApp::~QuorvaneApp() {
    appDelegate.applicationWillTerminate();
    confirmation_.close(); // a run that waits for the person would be waited for below
}

MenuBarViewModel::Services QuorvaneApp::modelServices() {
    return {google_.oauth,
            google_.albums,
            google_.tracker,
            core_.preferences,
            core_.logger,
            core_.logger.logPublisher(),
            console_,
            core_.clock,
            desktop_,
            [file = core_.folders.runLock()] { return std::make_shared<RunLock>(file); },
            core_.logger.logFile(),
            [this] { library_.accountDidChange(); },
            [this](const QString& url) { return handOverURL(environment_, url); }};
}

AppDelegate::Platform QuorvaneApp::launchPlatform() {
    AppDelegate::Platform platform;
    platform.becomeAccessory = [] {
        QApplication::setQuitOnLastWindowClosed(
            AppDelegate::applicationShouldTerminateAfterLastWindowClosed());
    };
    platform.createMenuBarController = [this] { menuBarController_.setupStatusItem(); };
    platform.authorizationStatus = [this](auto answer) { library_.openRemembered(answer); };
    platform.requestAuthorization = [this](auto answer) { chooseLibrary(answer); };
    platform.showAlert = [this](const AlertText& text, auto answer) {
        dialogs_.showAlert(text, answer);
    };
    platform.openPrivacySettings = [this] {
        chooseLibrary([this](AuthorizationStatus) { library_.startObserver(); });
    };
    platform.startObserver = [this] { library_.startObserver(); };
    platform.stopObserver = [this] { library_.stopObserver(); };
    platform.refreshState = [this] { model_.refreshState(); };
    platform.handleURL = [this](const QUrl& url) {
        handOverURL(environment_, url.toString(QUrl::FullyEncoded));
    };
    return platform;
}

/// Choosing a library is what gives the permission to read it; choosing none refuses it.
void QuorvaneApp::chooseLibrary(const LibraryHost::Answer& answer) {
    dialogs_.chooseLibrary(core_.folders.pictures, [this, answer](auto path) {
        if (path)
            library_.open(*path, answer);
        else
            answer(AuthorizationStatus::denied);
    });
}

} // namespace quorvane
