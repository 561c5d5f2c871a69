#include "app/cli/Command.h"
#include "foundation/Process.h"
#include "foundation/StopSignals.h"

#include <QCoreApplication>

#include <thread>

int main(int argc, char** argv) {
    quorvane::prepareProcess();
    const QCoreApplication application(argc, argv);
    const quorvane::StopSignals signals;
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
