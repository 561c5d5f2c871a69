#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quorvane::test {

/// What else of a Mac the adapters meet: one for the process, set by a test before it is used.
struct StandInSystem {
    static StandInSystem& shared();

    // Apple events.
    bool compiles = true;
    std::string scriptResult; ///< of every program
    std::string scriptError;  ///< not empty: the program fails
    std::vector<std::string> programs;

    // The keychain.
    int addStatus = 0; ///< of every SecItemAdd
    bool makesAccess = true;
    std::string lastAttributes; ///< the keys of what was added last, sorted

    // The sign-in sheet.
    bool sheetStarts = true;
    std::string callback;   ///< where it leads; empty: nowhere
    std::string sheetError; ///< not empty: it ends with this
    bool answers = true;    ///< else the person does nothing
    bool wasCancelled = false;

    // The rest.
    std::vector<std::string> logged, opened;
    int activationPolicy = -1;
    std::string appearance;
    std::string trash; ///< a folder

    void tellOfFolders(); ///< every open stream of folder events
    std::vector<std::string> watchedTrees;
};

} // namespace quorvane::test
