#include "app/gui/QuorvaneApp.h"

#include <QApplication>
#include <QTimer>

#include <cstdio>

/// Prints the seconds that a backup of the remembered library takes in the program with a window
/// (visible, hidden), or the monotonic clock, in seconds, when its launch was done and its icon
/// stood in the tray (start).
namespace quorvane::bench {

namespace {

void tell(Clock::Monotonic::duration time) {
    std::printf("%.6f\n", std::chrono::duration<double>(time).count());
    std::fflush(stdout);
}

void backUp(MenuBarViewModel& model, const SystemClock& clock) {
    const auto begun = std::make_shared<Clock::Monotonic>();
    const auto start = [&model, &clock, begun] {
        if (*begun != Clock::Monotonic() || !model.hasLibrary() || !model.isSignedIn())
            return;
        *begun = clock.monotonic();
        model.triggerSync();
    };
    QObject::connect(&model, &MenuBarViewModel::routeChanged, qApp, start, Qt::QueuedConnection);
    QObject::connect(&model, &MenuBarViewModel::accountChanged, qApp, start, Qt::QueuedConnection);
    QObject::connect(&model, &MenuBarViewModel::syncChanged, qApp, [&model, &clock, begun] {
        if (*begun == Clock::Monotonic() || model.isSyncing())
            return;
        tell(clock.monotonic() - *begun);
        QApplication::quit();
    });
    start();
}

int run(const QString& word) {
    const SystemClock clock;
    QuorvaneApp app(UserFolders::ofCurrentUser());
    app.appDelegate.applicationDidFinishLaunching();
    if (word == u"start")
        QTimer::singleShot(0, qApp, [&clock] {
            tell(clock.monotonic().time_since_epoch());
            QApplication::quit();
        });
    else
        backUp(app.model(), clock);
    if (word == u"visible")
        app.bringToFront();
    return QApplication::exec();
}

} // namespace

} // namespace quorvane::bench

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList words = QApplication::arguments();
    if (words.size() != 2) {
        std::fputs("quorvane-bench-window visible|hidden|start\n", stderr);
        return 2;
    }
    return quorvane::bench::run(words[1]);
}
