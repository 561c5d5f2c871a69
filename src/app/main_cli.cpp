#include "app/cli/Command.h"
#include "foundation/Process.h"

#include <QCoreApplication>

#include <csignal>
#include <thread>

namespace {

/// SIGINT, SIGTERM and SIGHUP, blocked in every thread, become a request to stop.
class StopSignals {
  public:
    StopSignals() {
        sigemptyset(&signals_);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, wakeUp})
            sigaddset(&signals_, signal);
        pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
        waiter_ = std::thread([this] {
            int signal = 0;
            while (sigwait(&signals_, &signal) == 0 && signal != wakeUp)
                stop_.request_stop();
        });
    }
    ~StopSignals() {
        pthread_kill(waiter_.native_handle(), wakeUp);
        waiter_.join();
    }
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    std::stop_token token() const { return stop_.get_token(); }

  private:
    static constexpr int wakeUp = SIGUSR1;
    sigset_t signals_{};
    std::stop_source stop_;
    std::thread waiter_;
};

} // namespace

int main(int argc, char** argv) {
    quorvane::prepareProcess();
    const QCoreApplication application(argc, argv);
    const StopSignals signals;
    quorvane::Console console;
    // The command works on its own thread; this one serves what is posted to the main thread.
    std::jthread worker([&, words = QCoreApplication::arguments().mid(1)] {
        const int code = quorvane::cli::run(words, console, signals.token());
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [code] { QCoreApplication::exit(code); },
            Qt::QueuedConnection);
    });
    return QCoreApplication::exec();
}
