#pragma once

#include "sqlite/PrivateFolder.h"

#include <cstdint>
#include <optional>

namespace quorvane {

/// A private copy of a database that belongs to another program, together with its write-ahead
/// log: opening the original, even read-only, would create files beside it, and without the log
/// rows would be missed. What did not change is not copied again. The copy goes with the object.
/// One thread at a time.
class DatabaseSnapshot {
  public:
    /// The copy is kept in a private folder below `workFolder`, made by the first `refresh`.
    DatabaseSnapshot(std::filesystem::path original, std::filesystem::path workFolder)
        : original_(std::move(original)), workFolder_(std::move(workFolder)) {}

    /// True when the copy says what the original says now. Costs two looks at file attributes.
    bool isCurrent() const;

    /// Copies what changed; no connection to the copy may be open. False when the original keeps
    /// changing under the copy, which is then not to be used. Throws `FileError` when the original
    /// cannot be read or the copy not be written.
    bool refresh();

    /// The copied database.
    std::filesystem::path file() const;

  private:
    /// What tells one state of a file from another; all zero when it is absent.
    struct Stamp {
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;
        bool operator==(const Stamp&) const = default;
    };
    static Stamp stampOf(const std::filesystem::path& file);
    std::filesystem::path originalLog() const;
    void copy(const char* suffix) const;

    std::filesystem::path original_, workFolder_;
    std::optional<PrivateFolder> folder_;
    std::optional<Stamp> database_; ///< of what the copy of the database was made
    std::optional<Stamp> log_;      ///< of what the copy of its log was made
};

} // namespace quorvane
