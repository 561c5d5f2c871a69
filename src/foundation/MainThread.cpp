#include "foundation/MainThread.h"

#include <QCoreApplication>
#include <QThread>

namespace quorvane {

void onMainThread(std::function<void()> work) {
    if (auto* application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, std::move(work), Qt::QueuedConnection);
}

bool isMainThread() {
    const auto* application = QCoreApplication::instance();
    return application != nullptr && QThread::currentThread() == application->thread();
}

} // namespace quorvane
