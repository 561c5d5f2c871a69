#pragma once

#include <QString>

#include <filesystem>

namespace quorvane {

/// Where the product keeps things. The one place that knows; everything else asks it.
struct UserFolders {
    std::filesystem::path home;
    std::filesystem::path pictures; ///< the platform's own Pictures folder
    std::filesystem::path temporaryStaging = "/tmp/QuorvaneStaging";

    std::filesystem::path applicationSupport() const {
        return home / "Library/Application Support/Quorvane";
    }
    std::filesystem::path logs() const { return home / "Library/Logs/Quorvane"; }
    std::filesystem::path permanentStaging() const {
        return pictures / "QuorvaneStaging_Permanent";
    }
    std::filesystem::path database() const { return applicationSupport() / "quorvane.sqlite"; }
    std::filesystem::path preferences() const { return applicationSupport() / "preferences.json"; }
    /// Held while a file is staged: nobody else of this user then stages, dates or tidies up.
    std::filesystem::path stagingLock() const { return applicationSupport() / "staging.lock"; }
    /// How many requests the project of a client (its number, then "-") has sent today.
    std::filesystem::path requestCount(const QString& clientID) const;
    /// What the latest run does, or how it ended.
    std::filesystem::path runState() const { return applicationSupport() / "run-state.json"; }
    std::filesystem::path runLock() const { return applicationSupport() / "run.lock"; }

    /// The folders of the user who runs the process. Throws `Error` when there is no home or no
    /// Pictures folder.
    static UserFolders ofCurrentUser();
};

} // namespace quorvane
