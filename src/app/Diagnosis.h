#pragma once

#include "foundation/Date.h"

#include <QString>

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

/// What can stand between a person and their backup, judged from what was found. Pure functions.
namespace quorvane {

struct Finding {
    enum class State {
        fine,
        warning, ///< backing up works, something else does not or soon will not
        faulty,  ///< backing up does not work
        unknown, ///< could not be looked at
    };
    /// What the program itself can do about it when asked.
    enum class Remedy { none, signIn, chooseLibrary };

    QString id; ///< in the JSON
    QString title;
    State state = State::fine;
    QString what;
    QString advice; ///< what to do; empty when there is nothing
    Remedy remedy = Remedy::none;
};

/// The configuration of the Google client.
struct ClientFacts {
    QString id;
    bool isConfigured = false; ///< else the one built in, which is a placeholder at Google
    bool isLocalService = false;
    bool hasSecret = false;
    QString redirect; ///< the value of GOOGLE_REDIRECT
};

/// What Google said to a refresh of the session, and to a listing of the albums with it.
struct GoogleFacts {
    bool hasSession = false;
    QString unreachable; ///< why Google gave no answer; empty when it did
    int tokenStatus = 0; ///< 0: not asked
    QString tokenError;  ///< RFC 6749, section 5.2
    bool maySend = true;
    bool mayList = true;
    std::optional<std::chrono::seconds> sessionLeft; ///< Google says it of clients in testing only
    int listStatus = 0;                              ///< 0: not asked
    bool isApiDisabled = false;
    bool isQuotaSpent = false;                      ///< of the day
    bool isRateLimited = false;                     ///< for now
    std::optional<std::chrono::seconds> clockAhead; ///< of this computer's clock
};

/// Of the requests that the client's project may send a day.
struct QuotaFacts {
    int used = 0; ///< by this user on this computer
    int left = 0;
    std::chrono::seconds untilNewDay{0};
};

struct KeyringFacts {
    bool hasTokens = false; ///< somewhere
    bool isKept = false;    ///< in the keyring
};

struct StagingFacts {
    std::int64_t freeBytes = 0;
    std::int64_t pendingBytes = 0;
    std::int64_t largestBytes = 0; ///< of a pending file
};

Finding clientFinding(const ClientFacts& client);
Finding clientKindFinding(const ClientFacts& client);
Finding sessionFinding(const GoogleFacts& google);
Finding sessionEndFinding(const GoogleFacts& google);
Finding permissionsFinding(const GoogleFacts& google);
Finding apiFinding(const GoogleFacts& google);
/// `today` as this computer counted, with what other programs of the project sent unknown.
Finding quotaFinding(const GoogleFacts& google, const QuotaFacts& today);
/// `refusal` is what Google said when it last refused an upload for want of room.
Finding storageFinding(const std::optional<QString>& refusal);
Finding keyringFinding(const KeyringFacts& keyring);
Finding clockFinding(const GoogleFacts& google);
/// `failure` is why the library cannot be read.
Finding libraryFinding(const QString& path, const std::optional<QString>& failure);
/// None when the library cannot be read.
Finding stagingFinding(const std::optional<StagingFacts>& staging);
/// `holder` is who holds the run lock.
Finding lockFinding(const std::optional<QString>& holder);

/// None is a warning or a fault.
bool areFine(const std::vector<Finding>& findings);

} // namespace quorvane
