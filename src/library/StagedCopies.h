#pragma once

#include "library/StagingFolder.h"
#include "store/DatabaseManager.h"
#include "store/StateCatalogue.h"

#include <deque>
#include <unordered_map>

namespace quorvane {

/// The whole file's digest (64 lower-case hexadecimal digits) and its length in bytes.
struct HashAndSize {
    QString sha256;
    std::int64_t sizeBytes = 0;

    bool operator==(const HashAndSize&) const = default;
};

/// The staged files of one state, in its permanent and its temporary folder: which there are, what
/// their bytes are, and which of them may go. Not thread-safe.
class StagedCopies {
  public:
    /// What is kept of copies that were sent.
    static constexpr std::int64_t sentLimit = std::int64_t{2} << 30;

    explicit StagedCopies(const StatePlace& place, DatabaseManager& database);

    /// Creates both folders, mode 0700. False when the temporary one is not this user's alone.
    bool create();

    const std::filesystem::path& permanentFolder() const { return permanent_.path(); }
    /// Where files are staged now. Throws `Error` when there is no folder to stage into.
    StagingFolder& folderForStaging();
    StagingFolder& folderOf(const std::filesystem::path& file);

    /// The permanent folder comes before the temporary one.
    std::optional<std::filesystem::path> find(const QString& identifier);
    /// Deletes every staged file of the asset; failures are ignored.
    void removeAll(const QString& identifier);
    void removeLeftovers(const std::stop_token& stop);

    /// Moves the file where no staged file is looked for, and returns its new place. Throws
    /// `FileError`.
    std::filesystem::path setAside(const std::filesystem::path& file);
    /// Back to `file`, over whatever is there.
    void putBack(const std::filesystem::path& aside, const std::filesystem::path& file);
    /// Its bytes are known after all: it is not needed any more.
    void removeAside(const std::filesystem::path& aside);

    /// The file's digest. What was hashed by this object and has not changed since is not read
    /// again. Throws `FileError`, or `Cancelled`.
    HashAndSize hashOf(const std::filesystem::path& file, const std::stop_token& stop);

    /// The asset's copy was sent: it is kept only as long as there is room for it, the oldest going
    /// first.
    void wasSent(const QString& identifier);
    /// Lets go of sent copies until `bytes` and a reserve are free. False when there is not even
    /// room for `bytes`.
    bool makeRoom(std::int64_t bytes);

  private:
    struct Sent {
        QString identifier;
        std::int64_t bytes;
    };
    struct Hashed {
        FileVersion version;
        HashAndSize content;
    };

    void loadSent();
    void dropOldestSent();

    StagingFolder permanent_;
    StagingFolder temporary_;
    DatabaseManager& database_;
    std::deque<Sent> sent_; ///< the oldest first
    std::int64_t sentBytes_ = 0;
    bool isSentLoaded_ = false;
    std::unordered_map<std::string, Hashed> hashes_;
};

/// Reads in chunks of 1 MiB. Throws `FileError`, or `Cancelled` between two chunks.
HashAndSize computeHashAndSize(const std::filesystem::path& file, const std::stop_token& stop = {});

} // namespace quorvane
