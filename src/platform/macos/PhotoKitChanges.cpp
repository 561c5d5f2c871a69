#include "platform/macos/PhotoKitChanges.h"

namespace quorvane {

void PhotoKitChanges::Receiver::receive(const LibraryChange& change) noexcept {
    const std::lock_guard lock(mutex_);
    if (!observer_)
        return;
    try {
        observer_->photoLibraryDidChange(change);
    } catch (const std::exception& error) {
        log_.log(QStringLiteral("[PhotoKit] ⚠️ Değişikliklere bakılamadı: ") +
                 describe(error));
    }
}

void PhotoKitChanges::Receiver::set(LibraryChangeObserver* observer) {
    const std::lock_guard lock(mutex_);
    observer_ = observer;
}

bool PhotoKitChanges::Receiver::isFor(const LibraryChangeObserver& observer) const {
    const std::lock_guard lock(mutex_);
    return observer_ == &observer;
}

} // namespace quorvane
