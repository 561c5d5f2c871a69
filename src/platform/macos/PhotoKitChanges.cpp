#include "platform/macos/PhotoKitChanges.h"

namespace quorvane {

void PhotoKitChanges::Receiver::receive(const LibraryChange& change) noexcept {
    const auto observer = observer_.lock();
    if (!*observer)
        return;
    try {
        (*observer)->photoLibraryDidChange(change);
    } catch (const std::exception& error) {
        log_.log(QStringLiteral("[PhotoKit] ⚠️ Değişikliklere bakılamadı: ") +
                 describe(error));
    }
}

void PhotoKitChanges::Receiver::set(LibraryChangeObserver* observer) {
    *observer_.lock() = observer;
}

bool PhotoKitChanges::Receiver::isFor(const LibraryChangeObserver& observer) const {
    return *observer_.lock() == &observer;
}

} // namespace quorvane
