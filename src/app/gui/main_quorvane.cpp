#include "app/gui/QuorvaneApp.h"
#include "app/gui/SingleInstance.h"
#include "app/gui/UrlEvents.h"
#include "foundation/Process.h"
#include "foundation/StopSignals.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QTranslator>

namespace quorvane {

namespace {

std::vector<QUrl> urlsOf(const QStringList& arguments) {
    std::vector<QUrl> urls;
    for (const QString& argument : arguments)
        urls.push_back(QUrl(argument, QUrl::StrictMode));
    return urls;
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

} // namespace

} // namespace quorvane

int main(int argc, char** argv) {
    using namespace quorvane;
    prepareProcess();
    const StopSignals signals;
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    if (const auto answer = answerTo(words)) {
        Console().result(*answer);
        return 0;
    }
    if (!GuiPlatform::hasDisplay()) {
        Console().error(QStringLiteral("Ekran bulunamadı: quorvane bir masaüstü oturumu ister. "
                                       "Ekransız kullanım için: quorvane-cli --help"));
        return 1;
    }
    const QString activationToken = GuiPlatform::givenActivationToken();
    const QApplication application(argc, argv);
    const std::stop_callback quitting(signals.token(), [] {
        QMetaObject::invokeMethod(qApp, &QApplication::quit, Qt::QueuedConnection);
    });
    QApplication::setApplicationName(QStringLiteral("Quorvane"));
    QApplication::setApplicationDisplayName(QStringLiteral("Quorvane"));
    QApplication::setDesktopFileName(QStringLiteral("quorvane"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/quorvane/AppIcon.svg")));
    QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey));
    QTranslator ofToolkit; // for the dialogs that are its own
    if (ofToolkit.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&ofToolkit);
    const std::vector<QUrl> urls = urlsOf(QApplication::arguments().mid(1));
    try {
        const UserFolders folders = UserFolders::ofCurrentUser();
        SingleInstance instance(GuiPlatform::runtimeFolder(folders));
        if (!instance.claim({urls, activationToken}))
            return 0;
        QuorvaneApp app(folders);
        UrlEvents urlEvents([&app](const QUrl& url) { app.appDelegate.applicationOpen({url}); });
        qApp->installEventFilter(&urlEvents);
        instance.onLaterStart = [&app](const Start& later) {
            GuiPlatform::useActivationToken(later.activationToken);
            if (later.urls.empty())
                app.bringToFront();
            app.appDelegate.applicationOpen(later.urls);
        };
        app.appDelegate.applicationDidFinishLaunching();
        app.appDelegate.applicationOpen(urls);
        return QApplication::exec();
    } catch (const std::exception& error) {
        Console().error(describe(error));
        return 1;
    }
}
