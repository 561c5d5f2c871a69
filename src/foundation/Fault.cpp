#include "foundation/Fault.h"

#include <algorithm>
#include <array>

namespace quorvane {

namespace {

struct Entry {
    FaultCode code;
    FaultKind kind;
    const char* name;
};

constexpr std::array entries{
    Entry{FaultCode::itemRefused, FaultKind::item, "item-refused"},
    Entry{FaultCode::tooLarge, FaultKind::item, "too-large"},
    Entry{FaultCode::fileTrouble, FaultKind::item, "file-trouble"},
    Entry{FaultCode::tokenRefused, FaultKind::item, "token-refused"},
    Entry{FaultCode::unreachable, FaultKind::moment, "unreachable"},
    Entry{FaultCode::serviceBusy, FaultKind::moment, "service-busy"},
    Entry{FaultCode::rateLimited, FaultKind::moment, "rate-limited"},
    Entry{FaultCode::dailyQuota, FaultKind::day, "daily-quota"},
    Entry{FaultCode::sessionEnded, FaultKind::session, "session-ended"},
    Entry{FaultCode::permissionMissing, FaultKind::session, "permission-missing"},
    Entry{FaultCode::storageFull, FaultKind::account, "storage-full"},
    Entry{FaultCode::serviceDisabled, FaultKind::account, "service-disabled"},
    Entry{FaultCode::accessDenied, FaultKind::account, "access-denied"},
    Entry{FaultCode::albumGone, FaultKind::target, "album-gone"},
    Entry{FaultCode::albumFull, FaultKind::target, "album-full"},
    Entry{FaultCode::diskFull, FaultKind::machine, "disk-full"},
    Entry{FaultCode::libraryAway, FaultKind::machine, "library-away"},
    Entry{FaultCode::storeUnavailable, FaultKind::machine, "store-unavailable"},
};

const Entry& entryOf(FaultCode code) {
    return *std::ranges::find(entries, code, &Entry::code);
}

} // namespace

FaultKind kindOf(FaultCode code) {
    return entryOf(code).kind;
}

QString rawValue(FaultCode code) {
    return QString::fromLatin1(entryOf(code).name);
}

std::optional<FaultCode> faultCodeFrom(const QString& rawValue) {
    const auto found = std::ranges::find_if(
        entries, [&](const Entry& entry) { return rawValue == QLatin1String(entry.name); });
    return found != entries.end() ? std::optional(found->code) : std::nullopt;
}

} // namespace quorvane
