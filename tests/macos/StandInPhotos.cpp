#include "macos/StandInPhotos.h"

#include <algorithm>

namespace quorvane::test {

StandInPhotos& StandInPhotos::shared() {
    static StandInPhotos photos;
    return photos;
}

StandInPhotos::StandInPhotos() : thread_([this](const std::stop_token& stop) { run(stop); }) {}

void StandInPhotos::run(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    while (changed_.wait(lock, stop, [this] { return !work_.empty(); })) {
        const auto next = std::move(work_.front());
        work_.pop_front();
        isBusy_ = true;
        lock.unlock();
        next();
        lock.lock();
        isBusy_ = false;
        changed_.notify_all();
    }
}

void StandInPhotos::reset() {
    hold(false);
    settle();
    const std::lock_guard lock(mutex_);
    rows_.clear();
    albums_.clear();
    mood_ = {};
}

void StandInPhotos::put(Asset asset) {
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(rows_, [&](const Row& row) { return row->identifier == asset.identifier; });
        rows_.push_back(std::make_shared<const Asset>(std::move(asset)));
    }
    tellOfChange();
}

void StandInPhotos::put(Album album) {
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(albums_, [&](const Album& a) { return a.identifier == album.identifier; });
        albums_.push_back(std::move(album));
    }
    tellOfChange();
}

void StandInPhotos::removeAsset(const std::string& identifier) {
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(rows_, [&](const Row& row) { return row->identifier == identifier; });
    }
    tellOfChange();
}

void StandInPhotos::set(Mood mood) {
    const std::lock_guard lock(mutex_);
    mood_ = std::move(mood);
}

void StandInPhotos::hold(bool on) {
    const std::lock_guard lock(mutex_);
    isHeld_ = on;
    changed_.notify_all();
}

void StandInPhotos::waitWhileHeld() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !isHeld_; });
}

void StandInPhotos::settle() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return work_.empty() && !isBusy_; });
}

std::vector<StandInPhotos::Row> StandInPhotos::rows() const {
    const std::lock_guard lock(mutex_);
    return rows_;
}

std::vector<StandInPhotos::Album> StandInPhotos::albums() const {
    const std::lock_guard lock(mutex_);
    return albums_;
}

StandInPhotos::Mood StandInPhotos::mood() const {
    const std::lock_guard lock(mutex_);
    return mood_;
}

void StandInPhotos::post(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    work_.push_back(std::move(work));
    changed_.notify_all();
}

} // namespace quorvane::test
