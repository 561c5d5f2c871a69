#include "app/gui/QuorvaneApp.h"

#include "app/RunLock.h"
#include "app/RunReport.h"
#include "app/SessionCheck.h"
#include "foundation/File.h"

#include <QApplication>
#include <QDir>
#include <QTimer>

namespace quorvane {

namespace {

/// After the launch, which the window has no part in; the first click comes later than that.
constexpr std::chrono::seconds leisure(1);

CheckedThing::State stateOf(const Finding& finding) {
    switch (finding.state) {
    case Finding::State::fine:
        return CheckedThing::State::fine;
    case Finding::State::warning:
        return CheckedThing::State::warning;
    case Finding::State::faulty:
        return CheckedThing::State::faulty;
    case Finding::State::unknown:
        break;
    }
    return CheckedThing::State::unknown;
}

/// Where something is to be done, that is the text, and what was found goes into the title.
CheckedThing shown(const Finding& finding) {
    CheckedThing thing{stateOf(finding), finding.title, finding.what};
    if (!finding.advice.isEmpty()) {
        thing.title += QStringLiteral(": ") + finding.what;
        thing.text = finding.advice;
    }
    if (finding.remedy == Finding::Remedy::signIn)
        thing.remedy = CheckedThing::Remedy::signIn;
    else if (finding.remedy == Finding::Remedy::chooseLibrary)
        thing.remedy = CheckedThing::Remedy::chooseLibrary;
    return thing;
}

} // namespace

QuorvaneApp::QuorvaneApp(const UserFolders& folders)
    : core_(folders, system_.with(console_, trash_)) {
    library_.onOpened = [this](std::shared_ptr<const LibrarySession> session) {
        model_.setLibrary(std::move(session));
    };
    library_.onAway = [this](const AwayLibrary& library) { model_.setLibraryAway(library); };
    library_.onChanged = [this] { model_.libraryDidChange(); };
    QObject::connect(&window_, &MainWindowController::chooseLibraryRequested, &model_, [this] {
        chooseLibrary([this](AuthorizationStatus) { library_.startObserver(); });
    });
    QObject::connect(&window_, &MainWindowController::reportRequested, &model_, [this] {
        const QStringList kinds{QStringLiteral("Rapor, dosya adları gizli (*.txt)"),
                                QStringLiteral("Rapor, dosya adlarıyla (*.txt)")};
        dialogs_.chooseFile(QStringLiteral("Raporu Kaydet"),
                            pathFrom(QDir::home().filePath(QStringLiteral("quorvane-rapor.txt"))),
                            kinds, [this](const auto& file, qsizetype kind) {
                                window_.dashboard().lives()->saveReport(
                                    file, kind == 1 ? Names::kept : Names::hidden);
                            });
    });
    QObject::connect(&window_, &MainWindowController::runReportRequested, &model_, [this] {
        dialogs_.chooseFile(
            QStringLiteral("Eşitleme Raporunu Kaydet"),
            pathFrom(QDir::home().filePath(QStringLiteral("quorvane-esitleme.html"))),
            {QStringLiteral("Eşitleme raporu (*.html)")},
            [this](const auto& file, qsizetype) { window_.dashboard().runReport()->save(file); });
    });
    platform_.desktop.onNoticeOpened = [this](Notice::About about) {
        window_.showWindowAndCenter();
        window_.dashboard().open(about);
    };
    QObject::connect(&window_, &MainWindowController::quitRequested, qApp, &QApplication::quit);
    platform_.follow(model_, window_);
}

QuorvaneApp::~QuorvaneApp() {
    appDelegate.applicationWillTerminate();
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
            platform_.desktop,
            trash_,
            [file = core_.folders.runLock()] { return std::make_shared<RunLock>(file); },
            core_.logger.logFile(),
            [this] { library_.accountDidChange(); },
            [this](const QString& url) { return PlatformPorts::handOver(core_.folders, url); },
            [this] { library_.look(); },
            [this](const std::stop_token& stop) { return checkedThings(stop); },
            [this](const FinishedRun& run) { return reportPage(run); }};
}

QByteArray QuorvaneApp::reportPage(const FinishedRun& run) {
    RunReport report = RunReport::of(run.session->run, run.outcome, RunReport::Extent::page);
    report.library = pathText(run.session->root);
    report.account = google_.account().email;
    report.end = run.end;
    report.seconds = run.seconds;
    return report.html().toUtf8();
}

std::vector<CheckedThing> QuorvaneApp::checkedThings(const std::stop_token& stop) {
    const auto library = [this] {
        const auto path = rememberedLibrary(core_);
        if (!path)
            throw Error(QStringLiteral("Arşiv seçilmedi"));
        if (!isThere(*path))
            throw Error(QStringLiteral("Arşiv yerinde değil: ") + pathText(*path));
        return *path;
    };
    std::vector<CheckedThing> things;
    for (const Finding& finding : checkSession(core_, google_, library, stop))
        things.push_back(shown(finding));
    return things;
}

AppDelegate::Platform QuorvaneApp::launchPlatform() {
    AppDelegate::Platform platform;
    platform.becomeAccessory = [] {
        GuiPlatform::becomeAccessory();
        QApplication::setQuitOnLastWindowClosed(
            AppDelegate::applicationShouldTerminateAfterLastWindowClosed());
    };
    platform.createMenuBarController = [this] {
        menuBarController_.setupStatusItem();
        QTimer::singleShot(leisure, &window_, &MainWindowController::prepare);
    };
    platform.authorizationStatus = [this](auto answer) { library_.openRemembered(answer); };
    platform.requestAuthorization = [this](auto answer) {
        if (core_.ports.photos)
            library_.requestPhotos(answer);
        else
            chooseLibrary(answer);
    };
    platform.showAlert = [this](const AlertText& text, auto answer) {
        dialogs_.showAlert(text, answer);
    };
    platform.openPrivacySettings = [this] {
        if (platform_.openPrivacySettings())
            return;
        chooseLibrary([this](AuthorizationStatus) { library_.startObserver(); });
    };
    platform.startObserver = [this] { library_.startObserver(); };
    platform.stopObserver = [this] { library_.stopObserver(); };
    platform.refreshState = [this] { model_.refreshState(); };
    platform.handleURL = [this](const QUrl& url) {
        PlatformPorts::handOver(core_.folders, url.toString(QUrl::FullyEncoded));
    };
    return platform;
}

/// Choosing a library is what gives the permission to read it; choosing none refuses it.
void QuorvaneApp::chooseLibrary(const LibraryHost::Answer& answer) {
    dialogs_.chooseLibrary(core_.folders.pictures, [this, answer](auto path) {
        if (!path)
            return answer(AuthorizationStatus::denied);
        library_.open(*path, [this, answer, path = *path](AuthorizationStatus status) {
            if (status != AuthorizationStatus::authorized && status != AuthorizationStatus::limited)
                model_.showError(QStringLiteral("Bu kitaplık okunamıyor: ") + pathText(path));
            answer(status);
        });
    });
}

} // namespace quorvane
