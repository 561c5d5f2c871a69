#pragma once

#include "foundation/UserFolders.h"
#include "store/RecordLife.h"

#include <functional>
#include <optional>
#include <vector>

namespace quorvane {

/// Where the state of one library and one account is: its database and its staged copies.
struct StatePlace {
    std::filesystem::path database;
    std::filesystem::path permanentStaging;
    std::filesystem::path temporaryStaging;

    bool operator==(const StatePlace&) const = default;
};

/// The states of this user. The first library has the well-known places; every further pair of
/// library and account gets a folder of its own, `libraries/<key>`, and staging folders of that
/// name. Each database says itself whose it is, so there is no list that could be wrong. Any
/// process. Throws `Error` when a state cannot be read: nothing is made in its place.
class StateCatalogue {
  public:
    explicit StateCatalogue(UserFolders folders) : folders_(std::move(folders)) {}

    /// The state of this library and account, made when there is none. Where the account is
    /// unknown, one that nothing was sent from yet. It belongs to the library from now on.
    StatePlace open(const QString& library, const AccountIdentity& account);

    /// The same for looking only: none when there is no such state. Where the account is unknown,
    /// the only one of the library.
    std::optional<StatePlace> find(const QString& library, const AccountIdentity& account) const;

    /// What tells a library from every other where only its place and its content can: the identity
    /// of the state, among those of libraries that were ever at `place`, of which `holds` finds
    /// there what was recorded; else a new one.
    QString identityAt(const QString& place,
                       const std::function<bool(DatabaseManager&)>& holds) const;

    /// The databases of this account's states but `own`.
    std::vector<std::filesystem::path> othersOf(const AccountIdentity& account,
                                                const StatePlace& own) const;

    /// That of the first library, and of commands without a library.
    StatePlace first() const;

  private:
    struct State {
        StatePlace place;
        QString library;
        AccountIdentity account;
    };

    StatePlace placeOf(const QString& key) const;
    std::filesystem::path folder() const { return folders_.applicationSupport() / "libraries"; }
    std::vector<State> states() const;

    UserFolders folders_;
};

} // namespace quorvane
