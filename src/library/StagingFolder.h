#pragma once

#include <QString>

#include <filesystem>
#include <optional>
#include <set>
#include <stop_token>
#include <string>

#include <sys/types.h>

namespace quorvane {

/// One folder of staged files. It keeps their names sorted, so that finding a file costs the same
/// among ten and among a hundred thousand; the folder's own time stamp tells when others changed
/// it. Nothing throws: a folder that cannot be used holds nothing. Not thread-safe.
class StagingFolder {
  public:
    enum class Access {
        any,
        privateOnly, ///< used only when it is a real folder of this user that nobody else can enter
    };

    StagingFolder(std::filesystem::path path, Access access);

    const std::filesystem::path& path() const { return path_; }

    /// Creates the folder, mode 0700, and those above it. A failure shows in `isUsable`.
    void create();

    bool isUsable() const { return stamp().has_value(); }

    /// The first regular file, in the order of names, whose name begins with `prefix`.
    std::optional<std::filesystem::path> find(const QString& prefix);

    /// Deletes every regular file whose name begins with `prefix`. An empty prefix deletes nothing.
    void removeAll(const QString& prefix);

    /// Deletes the hidden temporary files that a run which died has left. Only for the one process
    /// that stages. A stop leaves the rest to the next call.
    void removeLeftovers(const std::stop_token& stop = {});

    /// What the owner does to the file `name` while this lives needs no new listing.
    class OwnChange {
      public:
        OwnChange(StagingFolder& folder, const std::filesystem::path& name)
            : folder_(folder), name_(name.native()), wasCurrent_(folder.isCurrent()) {}
        ~OwnChange() { folder_.settle(name_, wasCurrent_); }
        OwnChange(const OwnChange&) = delete;
        OwnChange& operator=(const OwnChange&) = delete;

      private:
        StagingFolder& folder_;
        std::string name_;
        bool wasCurrent_;
    };

  private:
    struct Stamp {
        dev_t device;
        ino_t inode;
        std::int64_t seconds, nanoseconds;
        bool operator==(const Stamp&) const = default;
    };

    std::optional<Stamp> stamp() const;
    bool isCurrent() const { return listedAt_.has_value() && listedAt_ == stamp(); }
    void refresh();
    std::set<std::string>::iterator firstWith(const std::string& prefix);
    void settle(const std::string& name, bool wasCurrent);

    std::filesystem::path path_;
    Access access_;
    std::optional<Stamp> listedAt_;
    std::set<std::string> names_;
};

} // namespace quorvane
