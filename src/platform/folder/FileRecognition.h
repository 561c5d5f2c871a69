#pragma once

#include "library/KnownFiles.h"
#include "library/PhotoLibrary.h"

#include <functional>
#include <string_view>
#include <unordered_map>

namespace quorvane {

/// Reads a file of the library, given by its path inside it. None when that cannot be done now: the
/// file is then left out. May throw `Cancelled`.
using ContentReader = std::function<std::optional<SourceContent>(const std::string& path)>;

/// What is known of a library's files, which must outlive it, found by their paths.
class KnownByPath {
  public:
    explicit KnownByPath(std::vector<const KnownFile*> files);

    const std::vector<const KnownFile*>& files() const { return files_; }
    /// Its position in `files`; none when nothing is known of the path.
    std::optional<std::size_t> find(std::string_view path) const;
    bool isKnown(std::string_view path, const FileVersion& version) const;

  private:
    std::vector<const KnownFile*> files_;
    std::unordered_map<std::string_view, std::size_t> byPath_;
};

/// What a scan found to be different from what was known.
struct FileDifferences {
    std::vector<KnownFile> changed;
    std::vector<std::string> gone;
    std::vector<QUuid> superseded;
    std::vector<KnownFile> absent; ///< still known, but not among the files

    bool areThere() const { return !changed.empty() || !gone.empty() || !superseded.empty(); }
};

/// Gives each of a scan's files the identifier that its version goes by. The same version at its
/// path keeps it; so does one that was moved, which is told from its inode, or from its bytes when
/// its times changed as well. Anything else is a version of its own. A file is read at most once,
/// and only when its times leave open what it is. One that cannot be read then gets a null
/// identifier. Throws what `memory` and `read` throw.
FileDifferences recogniseFiles(std::vector<KnownFile>& files, const KnownByPath& known,
                               const QUuid& library, KnownFiles& memory, const ContentReader& read);

} // namespace quorvane
