#include "app/gui/QuorvaneApp.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QQuickWindow>
#include <QTimer>

#include <cstdio>

/// Prints the seconds that a backup of the remembered library takes in the program with a window
/// (visible, hidden); or the monotonic clock, in seconds, when its launch was done and its icon
/// stood in the tray (start); or how long its window took to be drawn for the first time, and the
/// longest time that it heard nothing after that, while the library was listed and what is held
/// back was opened (show).
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

/// The longest time between two sleeps of this thread's event loop.
class Pauses {
  public:
    explicit Pauses(const SystemClock& clock) : clock_(clock) {
        auto* dispatcher = QAbstractEventDispatcher::instance();
        QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, qApp,
                         [this] { awake_ = clock_.monotonic(); });
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, qApp,
                         [this] { longest_ = std::max(longest_, clock_.monotonic() - awake_); });
    }
    void begin() {
        awake_ = clock_.monotonic();
        longest_ = {};
    }
    Clock::Monotonic::duration longest() const { return longest_; }

  private:
    const SystemClock& clock_;
    Clock::Monotonic awake_ = clock_.monotonic();
    Clock::Monotonic::duration longest_{};
};

void show(QuorvaneApp& app, const SystemClock& clock) {
    const auto pauses = std::make_shared<Pauses>(clock);
    const Clock::Monotonic asked = clock.monotonic();
    app.bringToFront();
    for (QWindow* window : QGuiApplication::topLevelWindows())
        if (auto* view = qobject_cast<QQuickWindow*>(window))
            QObject::connect(
                view, &QQuickWindow::frameSwapped, qApp,
                [&clock, asked, pauses] {
                    tell(clock.monotonic() - asked);
                    pauses->begin();
                },
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
    QTimer::singleShot(6'000, qApp, [&app] { app.model().setShowQuarantineSheet(true); });
    QTimer::singleShot(9'000, qApp, [pauses] {
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
    qputenv("QT_NO_GLIB", "1"); // GLib's event loop does not tell when it sleeps
    const QApplication application(argc, argv);
    const QStringList words = QApplication::arguments();
    if (words.size() != 2) {
        std::fputs("quorvane-bench-window visible|hidden|start|show\n", stderr);
        return 2;
    }
    return quorvane::bench::run(words[1]);
}
