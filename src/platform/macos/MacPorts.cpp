#include "platform/macos/MacPorts.h"

#include "platform/macos/PhotoKitLibrary.h"
#include "platform/macos/SheetAuthSession.h"

namespace quorvane {

std::unique_ptr<PhotoLibrary> MacPhotos::open(DeletionConfirmation& confirmation, Log& log) {
    return std::make_unique<PhotoKitLibrary>(confirmation, log);
}

void MacPhotos::requestAuthorization(const std::stop_token& stop) {
    PhotoKitLibrary::requestAuthorization(stop);
}

std::unique_ptr<WebAuthSession> MacPorts::signIn(const UserFolders&, std::optional<int>, Console&,
                                                 Log& log) {
    return std::make_unique<SheetAuthSession>(log);
}

bool MacPorts::handOver(const UserFolders&, const QString&) {
    return false;
}

} // namespace quorvane
