#include "store/StateCatalogue.h"

#include "foundation/File.h"
#include "foundation/FileLock.h"
#include "store/StateFacts.h"

#include <QUuid>

#include <algorithm>
#include <set>

namespace quorvane {

namespace {

constexpr qsizetype keyLength = 12;
constexpr const char* databaseName = "quorvane.sqlite";

QString newKey() {
    return QUuid::createUuid().toString(QUuid::Id128).left(keyLength);
}

bool isThere(const std::filesystem::path& path) {
    std::error_code unreachable;
    return std::filesystem::exists(path, unreachable) || unreachable;
}

bool accepts(const AccountIdentity& bound, const AccountIdentity& account) {
    return bound.isKnown() && bound.isSameAs(account);
}

} // namespace

StatePlace StateCatalogue::first() const {
    return {folders_.database(), folders_.permanentStaging(), folders_.temporaryStaging};
}

StatePlace StateCatalogue::placeOf(const QString& key) const {
    const std::string suffix = "_" + key.toStdString();
    std::filesystem::path temporary = folders_.temporaryStaging;
    temporary += suffix;
    return {folder() / key.toStdString() / databaseName,
            folders_.pictures / ("QuorvaneStaging" + suffix), temporary};
}

/// The first library's first, then the others by name.
std::vector<StateCatalogue::State> StateCatalogue::states() const {
    std::vector<StatePlace> places;
    if (isThere(folders_.database()))
        places.push_back(first());
    std::set<QString> keys;
    std::error_code absent;
    for (const auto& entry : std::filesystem::directory_iterator(folder(), absent))
        if (isThere(entry.path() / databaseName))
            keys.insert(pathText(entry.path().filename()));
    for (const QString& key : keys)
        places.push_back(placeOf(key));

    std::vector<State> found;
    for (const StatePlace& place : places) {
        Console silent(Console::Channel::silent);
        DatabaseManager database(place.database, silent);
        database.requireUsable();
        const StateFacts facts(database);
        found.push_back({place, facts.library(), facts.account()});
    }
    return found;
}

std::optional<StatePlace> StateCatalogue::find(const QString& library,
                                               const AccountIdentity& account) const {
    std::vector<State> ofLibrary = states();
    std::erase_if(ofLibrary, [&](const State& state) {
        return !state.library.isEmpty() && state.library != library;
    });
    std::ranges::stable_sort(ofLibrary, {},
                             [](const State& state) { return state.library.isEmpty() ? 1 : 0; });
    for (const State& state : ofLibrary)
        if (accepts(state.account, account))
            return state.place;
    for (const State& state : ofLibrary)
        if (!state.account.isKnown())
            return state.place;
    if (!account.isKnown() && ofLibrary.size() == 1)
        return ofLibrary.front().place;
    return std::nullopt;
}

StatePlace StateCatalogue::open(const QString& library, const AccountIdentity& account) {
    std::error_code shown; // a missing folder shows when the lock is made
    std::filesystem::create_directories(folders_.applicationSupport(), shown);
    const FileLock lock(folders_.applicationSupport() / "states.lock");
    std::optional<StatePlace> place = find(library, account);
    Console silent(Console::Channel::silent);
    const auto isBound = [&] {
        DatabaseManager database(place->database, silent);
        return StateFacts(database).account().isKnown();
    };
    if (!place || (!account.isKnown() && isBound()))
        place = isThere(folders_.database()) ? placeOf(newKey()) : first();
    DatabaseManager database(place->database, silent);
    database.requireUsable();
    StateFacts(database).bindLibrary(library);
    return *place;
}

QString StateCatalogue::identityAt(const QString& place,
                                   const std::function<bool(DatabaseManager&)>& holds) const {
    bool isTaken = false;
    Console silent(Console::Channel::silent);
    for (const State& state : states()) {
        if (state.library != place && !state.library.startsWith(place + u'#'))
            continue;
        DatabaseManager database(state.place.database, silent);
        if (holds(database))
            return state.library;
        isTaken = true;
    }
    return isTaken ? place + u'#' + newKey() : place;
}

std::vector<std::filesystem::path> StateCatalogue::othersOf(const AccountIdentity& account,
                                                            const StatePlace& own) const {
    std::vector<std::filesystem::path> files;
    for (const State& state : states())
        if (state.place != own && accepts(state.account, account))
            files.push_back(state.place.database);
    return files;
}

} // namespace quorvane
