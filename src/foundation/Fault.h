#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace quorvane {

/// Whose fault it is that something could not be done. Decides what becomes of a run.
enum class FaultKind {
    item,    ///< of this one item: others may pass
    moment,  ///< passes by itself within minutes or hours
    day,     ///< the day's quota is used up
    session, ///< the person has to sign in again
    account, ///< the person has to mend something at the service
    target,  ///< of the album that items go to
    machine, ///< of this computer
};

/// What exactly it was. Kept with the record that it happened to, as `rawValue`.
enum class FaultCode {
    itemRefused,       ///< the service does not want this item
    tooLarge,          ///< beyond the size that the service takes
    fileTrouble,       ///< a file here could not be read or written; another time it may
    tokenRefused,      ///< the upload's token is not known any more: the bytes are to be sent again
    unreachable,       ///< no answer: no connection, no name, no trust, no data for too long
    serviceBusy,       ///< 408, 5xx, or an answer that is none of the service's
    rateLimited,       ///< 429 of the moment
    dailyQuota,        ///< 429 of the day
    sessionEnded,      ///< revoked, expired, refused twice
    permissionMissing, ///< the consent lacks a scope
    storageFull,       ///< no room in the account
    serviceDisabled,   ///< the interface is not enabled for the client's project
    accessDenied,      ///< any other 403
    albumGone,
    albumFull,
    diskFull,
    libraryAway,
    storeUnavailable, ///< the state database is locked, full or read-only
};

FaultKind kindOf(FaultCode code);

/// The text stored with a record: lower-case words joined by "-".
QString rawValue(FaultCode code);
std::optional<FaultCode> faultCodeFrom(const QString& rawValue);

/// One fault as it was met.
struct Fault {
    FaultCode code = FaultCode::itemRefused;
    std::chrono::seconds retryAfter{0}; ///< what the service asked for; 0: nothing
    QString reason = {};                ///< in the service's own words, as far as it gave any
};

} // namespace quorvane
