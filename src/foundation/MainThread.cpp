#include "foundation/MainThread.h"

#include "foundation/Guarded.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <deque>

namespace quorvane {

namespace {

/// Lives on the main thread. The work waits in a queue of our own, under a lock that the thread
/// sanitizer can see; the event only says that there is some.
class MainThreadQueue final : public QObject {
  public:
    MainThreadQueue() { moveToThread(QCoreApplication::instance()->thread()); }

    void post(std::function<void()> work) {
        waiting_.lock()->push_back(std::move(work));
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }

    bool event(QEvent* event) override {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        std::function<void()> work;
        {
            const auto waiting = waiting_.lock();
            work = std::move(waiting->front());
            waiting->pop_front();
        }
        work();
        return true;
    }

  private:
    Guarded<std::deque<std::function<void()>>> waiting_;
};

} // namespace

void onMainThread(std::function<void()> work) {
    if (QCoreApplication::instance() == nullptr)
        return;
    static MainThreadQueue queue;
    queue.post(std::move(work));
}

bool isMainThread() {
    const auto* application = QCoreApplication::instance();
    return application != nullptr && QThread::currentThread() == application->thread();
}

} // namespace quorvane
