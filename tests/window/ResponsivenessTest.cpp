#include "window/WindowWorld.h"

#include <QAbstractEventDispatcher>
#include <QThread>

#include <gtest/gtest.h>

#include <time.h>

namespace quorvane::test {

namespace {

double cpuMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// The processor time of this thread between two sleeps of its event loop: what a person would feel
/// as a stutter, however busy the machine is with other things.
class Stretches {
  public:
    Stretches() {
        auto* dispatcher = QThread::currentThread()->eventDispatcher();
        QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &context_,
                         [this] { begin_ = cpuMilliseconds(); });
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &context_, [this] {
            longest_ = std::max(longest_, cpuMilliseconds() - begin_);
            ++count_;
        });
    }
    double longest() const { return longest_; }
    int count() const { return count_; }

  private:
    QObject context_;
    double begin_ = cpuMilliseconds();
    double longest_ = 0;
    int count_ = 0;
};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double limit = 200; // milliseconds
#else
constexpr double limit = 16;
#endif

TEST(ResponsivenessTest, aSyncNeverHoldsUpTheWindow) {
    WindowWorld world;
    const int count = std::max(100, qEnvironmentVariableIntValue("QUORVANE_SYNC_ITEMS"));
    world.world.addPictures(count);
    world.openLibrary();
    world.signIn();
    world.model->toggleInspector();
    world.window.showWindowAndCenter();
    world.settleView();

    const Stretches stretches;
    world.model->triggerSync();
    QEventLoop loop;
    QObject::connect(world.model.get(), &MenuBarViewModel::syncChanged, &loop, [&] {
        if (!world.model->isSyncing())
            loop.quit();
    });
    loop.exec();
    EXPECT_EQ(world.world.google.mediaItems().size(), static_cast<std::size_t>(count));
    EXPECT_GT(stretches.count(), 10);
    EXPECT_LT(stretches.longest(), limit);
    RecordProperty("longest", std::to_string(stretches.longest()));
    RecordProperty("stretches", stretches.count());
}

TEST(ResponsivenessTest, anIdleWindowSleeps) {
    WindowWorld world;
    world.window.showWindowAndCenter();
    world.settleView();
    ASSERT_TRUE(world.settle());
    const Stretches stretches;
    const double before = cpuMilliseconds();
    QEventLoop loop;
    QTimer::singleShot(2'000, &loop, &QEventLoop::quit);
    loop.exec();
    RecordProperty("wakeUps", stretches.count());
    EXPECT_LE(stretches.count(), 5) << "wake-ups in two seconds";
    EXPECT_LT(cpuMilliseconds() - before, limit);
}

} // namespace

} // namespace quorvane::test
