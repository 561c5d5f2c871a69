#include "platform/watch/ChangeWatch.h"

namespace quorvane {

namespace {

using Time = std::chrono::steady_clock::time_point;
using Wake = FolderNotifier::Wake;

constexpr int restAfterLook = 4; ///< a look that took a second is followed by four without one

Time now() {
    return std::chrono::steady_clock::now();
}

} // namespace

/// What one registration does on its thread.
class ChangeWatch::Loop {
  public:
    Loop(const ChangeWatch& watch, LibraryChangeObserver& observer, std::stop_token stop)
        : watch_(watch),
          observer_(observer),
          stop_(std::move(stop)),
          notifier_(FolderNotifier::make(watch.events_)) {}

    void run() {
        do
            look();
        while (waitForNext());
    }

  private:
    void look() {
        const Time began = now();
        const bool told = std::exchange(told_, false);
        isDue_ = false;
        QString trouble;
        try {
            found_ = watch_.look_(told, stop_);
            const FolderNotifier::Watched watched = notifier_->watch(found_.folders);
            isDue_ = watched.gained; // what came into a folder before it was watched was not told
            if (watched.refused > 0)
                trouble = textOfRefusal(watched.refused);
            nextLook_ = now() + (now() - began) * restAfterLook;
            if (stop_.stop_requested())
                return;
            // What the observer holds may be older than its registration.
            if (std::exchange(isFirst_, false) || found_.changed)
                observer_.photoLibraryDidChange(watch_.change_);
        } catch (const Cancelled&) {
            return;
        } catch (const std::exception& error) {
            trouble = QStringLiteral("⚠️ Değişikliklere bakılamadı: ") + describe(error);
        }
        report(trouble);
    }

    /// False when stopped.
    bool waitForNext() {
        if (!isDue_) {
            const WatchTimes& times = watch_.times_;
            const Wake wake =
                waitUntil(now() + (found_.unfinished ? times.unfinished : times.unasked));
            if (wake != Wake::changed)
                return wake != Wake::stopped;
            told_ = true;
        }
        return settle();
    }

    bool settle() {
        const Time cut = std::max(now() + watch_.times_.longestBurst, nextLook_);
        while (now() < cut) {
            const Time quiet = std::max(now() + watch_.times_.settle, nextLook_);
            const Wake wake = waitUntil(std::min(quiet, cut));
            if (wake != Wake::changed)
                return wake != Wake::stopped;
            told_ = true;
        }
        return !stop_.stop_requested();
    }

    Wake waitUntil(Time time) {
        return notifier_->wait(std::chrono::ceil<std::chrono::milliseconds>(time - now()), stop_);
    }

    QString textOfRefusal(int folders) const {
        return QStringLiteral("⚠️ Çekirdek %1 klasörün izlenmesini kabul etmedi (sınır: "
                              "fs.inotify.max_user_watches); buradaki değişiklikler %2 saniyede "
                              "bir aranacak")
            .arg(folders)
            .arg(std::chrono::ceil<std::chrono::seconds>(watch_.times_.unasked).count());
    }

    void report(const QString& trouble) {
        if (!trouble.isEmpty() && trouble != lastTrouble_)
            watch_.log_.log(watch_.name_ + u' ' + trouble);
        lastTrouble_ = trouble;
    }

    const ChangeWatch& watch_;
    LibraryChangeObserver& observer_;
    const std::stop_token stop_;
    std::unique_ptr<FolderNotifier> notifier_;
    Found found_;
    bool told_ = false;
    bool isDue_ = false; ///< a look without having been told
    bool isFirst_ = true;
    Time nextLook_{}; ///< not before this, however much happens
    QString lastTrouble_;
};

ChangeWatch::ChangeWatch(const QString& name, FolderNotifier::Events events, Look look,
                         const LibraryChange& change, Log& log, const WatchTimes& times)
    : name_(name),
      events_(events),
      look_(std::move(look)),
      change_(change),
      log_(log),
      times_(times) {}

void ChangeWatch::observe(LibraryChangeObserver& observer) {
    const std::lock_guard lock(mutex_);
    if (observer_ == &observer)
        return;
    thread_ = {}; // stops the one before
    observer_ = &observer;
    thread_ = std::jthread(
        [this, &observer](std::stop_token stop) { Loop(*this, observer, std::move(stop)).run(); });
}

void ChangeWatch::unobserve(LibraryChangeObserver& observer) {
    const std::lock_guard lock(mutex_);
    if (observer_ != &observer)
        return;
    thread_ = {};
    observer_ = nullptr;
}

} // namespace quorvane
