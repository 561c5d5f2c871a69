#include "app/RunLock.h"
#include "app/SystemPorts.h"
#include "app/gui/LibraryHost.h"
#include "app/gui/SingleInstance.h"
#include "app/gui/SystemDialogs.h"
#include "foundation/Memory.h"
#include "platform/linux/BrowserAuthSession.h"
#include "platform/linux/desktop/DesktopLook.h"
#include "platform/linux/desktop/LinuxDesktop.h"
#include "platform/linux/desktop/LinuxStatusHost.h"
#include "ui/window/MenuBarController.h"

#include <QApplication>
#include <QIcon>

#include <QSocketNotifier>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace quorvane {

namespace {

std::vector<QUrl> urlsOf(const QStringList& arguments) {
    std::vector<QUrl> urls;
    for (const QString& argument : arguments)
        urls.push_back(QUrl(argument, QUrl::StrictMode));
    return urls;
}

/// SIGTERM and SIGINT, as at the end of a session, become an orderly end. Before any thread.
FileDescriptor quitSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC));
}

/// The answer to an option that is no address; none when the program is to start.
std::optional<QString> answerTo(const QStringList& arguments) {
    if (arguments.contains(QStringLiteral("--version")))
        return QStringLiteral("quorvane ") + QStringLiteral(QUORVANE_VERSION);
    if (arguments.contains(QStringLiteral("--help")))
        return QStringLiteral("Kullanım: quorvane [ADRES...]\n\n"
                              "Durum çubuğunda çalışır; simgesine tıklayınca penceresi açılır.\n"
                              "Komut satırı için: quorvane-cli --help");
    return std::nullopt;
}

/// Asked before the toolkit is, which would abort.
bool hasDisplay() {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(variable))
            return true;
    return false;
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
    SystemPorts system_;
    SystemDialogs dialogs_;
    DialogConfirmation confirmation_{dialogs_};
    CoreServices core_{UserFolders::ofCurrentUser(), system_.with(console_, confirmation_)};
    BrowserAuthSession signIn_{environment_, {}, console_, core_.logger};
    GoogleServices google_{core_, signIn_};
    LinuxDesktop desktop_{environment_, core_.logger};
    LibraryHost library_{core_, google_};
    MenuBarViewModel model_{modelServices(), core_.logger.memoryBuffer()};
    MainWindowController window_{model_, core_.preferences};
    LinuxStatusHost statusHost_;
    MenuBarController menuBarController_{model_, window_, statusHost_};
    DesktopLook look_;

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

} // namespace

} // namespace quorvane

int main(int argc, char** argv) {
    using namespace quorvane;
    shareOneArena();
    std::signal(SIGPIPE, SIG_IGN);
    const FileDescriptor quitting = quitSignals();
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    if (const auto answer = answerTo(words)) {
        Console().result(*answer);
        return 0;
    }
    if (!hasDisplay()) {
        Console().error(QStringLiteral("Ekran bulunamadı: quorvane bir masaüstü oturumu ister. "
                                       "Ekransız kullanım için: quorvane-cli --help"));
        return 1;
    }
    const QApplication application(argc, argv);
    const QSocketNotifier quitNotifier(quitting.get(), QSocketNotifier::Read);
    QObject::connect(&quitNotifier, &QSocketNotifier::activated, qApp, &QApplication::quit);
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
