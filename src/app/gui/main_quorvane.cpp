#include "app/RunLock.h"
#include "app/gui/LibraryHost.h"
#include "app/gui/SingleInstance.h"
#include "app/gui/SystemDialogs.h"
#include "platform/linux/BrowserAuthSession.h"
#include "platform/linux/desktop/LinuxDesktop.h"
#include "ui/window/MenuBarController.h"

#include <QApplication>
#include <QIcon>

#include <csignal>

namespace quorvane {

namespace {

std::vector<QUrl> urlsOf(const QStringList& arguments) {
    std::vector<QUrl> urls;
    for (const QString& argument : arguments)
        urls.push_back(QUrl(argument, QUrl::StrictMode));
    return urls;
}

/// The whole program with a window, from the ground up.
class QuorvaneApp {
  public:
    explicit QuorvaneApp(const DesktopEnvironment& environment);
    ~QuorvaneApp();
    QuorvaneApp(const QuorvaneApp&) = delete;
    QuorvaneApp& operator=(const QuorvaneApp&) = delete;

  private:
    MenuBarViewModel::Services modelServices();
    AppDelegate::Platform launchPlatform();
    void chooseLibrary(const LibraryHost::Answer& answer);

    const DesktopEnvironment environment_;
    Console console_;
    CoreServices core_{UserFolders::ofCurrentUser(), console_};
    BrowserAuthSession signIn_{environment_, {}, console_, core_.logger};
    GoogleServices google_{core_, signIn_};
    LinuxDesktop desktop_{environment_, core_.logger};
    SystemDialogs dialogs_;
    DialogConfirmation confirmation_{dialogs_};
    LibraryHost library_{core_, google_, confirmation_};
    MenuBarViewModel model_{modelServices(), core_.logger.memoryBuffer()};
    MainWindowController window_{model_, core_.preferences};
    MenuBarController menuBarController_{model_, window_};

  public:
    AppDelegate appDelegate{launchPlatform(), core_.logger};

    void bringToFront() { window_.showWindowAndCenter(); }
};

QuorvaneApp::QuorvaneApp(const DesktopEnvironment& environment) : environment_(environment) {
    library_.onOpened = [this](std::shared_ptr<const LibrarySession> session) {
        model_.setLibrary(std::move(session));
    };
    library_.onChanged = [this] { model_.libraryDidChange(); };
    QObject::connect(&window_, &MainWindowController::chooseLibraryRequested, &model_, [this] {
        chooseLibrary([this](AuthorizationStatus) { library_.startObserver(); });
    });
    QObject::connect(&window_, &MainWindowController::quitRequested, qApp, &QApplication::quit);
}

QuorvaneApp::~QuorvaneApp() {
    appDelegate.applicationWillTerminate();
    confirmation_.close(); // a run that waits for the person would be waited for below
}

MenuBarViewModel::Services QuorvaneApp::modelServices() {
    return {core_.db,
            google_.oauth,
            google_.albums,
            google_.batchCoord,
            google_.tracker,
            core_.preferences,
            core_.logger,
            core_.logger.logPublisher(),
            console_,
            core_.clock,
            desktop_,
            [file = core_.folders.runLock()] { return std::make_shared<RunLock>(file); },
            core_.logger.logFile()};
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

} // namespace

} // namespace quorvane

int main(int argc, char** argv) {
    using namespace quorvane;
    std::signal(SIGPIPE, SIG_IGN);
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvane"));
    QApplication::setDesktopFileName(QStringLiteral("quorvane"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/quorvane/AppIcon.svg")));
    QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey));
    const std::vector<QUrl> urls = urlsOf(QApplication::arguments().mid(1));
    try {
        const auto environment = DesktopEnvironment::ofProcess(UserFolders::ofCurrentUser());
        SingleInstance instance(environment.runtimeFolder);
        if (!instance.claim(urls))
            return 0;
        QuorvaneApp app(environment);
        instance.onLaterStart = [&app](const std::vector<QUrl>& later) {
            if (later.empty())
                app.bringToFront();
            app.appDelegate.applicationOpen(later);
        };
        app.appDelegate.applicationDidFinishLaunching();
        app.appDelegate.applicationOpen(urls);
        return QApplication::exec();
    } catch (const std::exception& error) {
        Console().error(describe(error));
        return 1;
    }
}
