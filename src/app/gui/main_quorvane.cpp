#include "app/gui/QuorvaneApp.h"
#include "app/gui/SingleInstance.h"
#include "foundation/Process.h"

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

/// SIGTERM, SIGINT and SIGHUP, as at the end of a session, become an orderly end. Before any
/// thread.
FileDescriptor quitSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
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

} // namespace

} // namespace quorvane

int main(int argc, char** argv) {
    using namespace quorvane;
    prepareProcess();
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
