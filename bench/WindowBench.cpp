#include "app/gui/QuorvaneApp.h"

#include <QApplication>
#include <QQuickWindow>
#include <QTimer>

#include <cstdio>
#include <thread>

/// Prints the seconds that a backup of the remembered library takes in the program with a window
/// (visible, hidden); or the monotonic clock, in seconds, when its launch was done and its icon
/// stood in the tray (start); or how long its window took to be drawn for the first time, three
/// seconds after the launch, and the longest time that it heard nothing from the launch on, while
/// the library was listed and what is held back was opened (show).
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

/// The longest time that an event had to wait for this thread.
class Pauses {
  public:
    explicit Pauses(const SystemClock& clock) : clock_(clock) {}
    Clock::Monotonic::duration longest() const { return longest_; }

  private:
    void measure(const std::stop_token& stop) {
        for (; !stop.stop_requested(); std::this_thread::sleep_for(std::chrono::milliseconds(2)))
            QMetaObject::invokeMethod(
                &context_,
                [this, asked = clock_.monotonic()] {
                    longest_ = std::max(longest_, clock_.monotonic() - asked);
                },
                Qt::QueuedConnection);
    }

    const SystemClock& clock_;
    QObject context_;
    Clock::Monotonic::duration longest_{};
    std::jthread thread_{[this](const std::stop_token& stop) { measure(stop); }};
};

void bringToFront(QuorvaneApp& app, const SystemClock& clock) {
    const Clock::Monotonic asked = clock.monotonic();
    app.bringToFront();
    for (QWindow* window : QGuiApplication::topLevelWindows())
        if (auto* view = qobject_cast<QQuickWindow*>(window))
            QObject::connect(
                view, &QQuickWindow::frameSwapped, qApp,
                [&clock, asked] { tell(clock.monotonic() - asked); },
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
}

void show(QuorvaneApp& app, const SystemClock& clock) {
    const auto pauses = std::make_shared<Pauses>(clock);
    QTimer::singleShot(3'000, qApp, [&app, &clock] { bringToFront(app, clock); });
    QTimer::singleShot(9'000, qApp, [&app] { app.model().setShowQuarantineSheet(true); });
    QTimer::singleShot(12'000, qApp, [pauses] {
        tell(pauses->longest());
        QApplication::quit();
    });
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
    else if (word == u"show")
        show(app, clock);
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
        std::fputs("quorvane-bench-window visible|hidden|start|show\n", stderr);
        return 2;
    }
    return quorvane::bench::run(words[1]);
}
