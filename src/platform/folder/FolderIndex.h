#pragma once

#include "library/KnownFiles.h"
#include "library/PhotoLibrary.h"

namespace quorvane {

/// One folder of the library; the numbers are positions in the index.
struct Folder {
    std::string path; ///< empty for the library itself
    std::int64_t modified = 0;
    QUuid albumIdentifier; ///< of the folder as an album: its own pictures
    QUuid listIdentifier;  ///< of the folder as a list of albums: its sub-folders
    std::vector<std::size_t> files;
    std::vector<std::size_t> folders;
    bool hasPicturesBelow = false; ///< in it or in any sub-folder

    bool isAlbum() const { return !path.empty() && !files.empty(); }
    bool operator==(const Folder&) const = default;
};

/// What one walk through a folder tree found.
struct FolderScan {
    std::vector<KnownFile> files;
    std::vector<std::size_t> folderOfFile; ///< for each of the files
    std::vector<Folder> folders; ///< each before its sub-folders, the library itself first
    LeftOut leftOut;
    std::vector<std::string> otherFiles; ///< the first of those that were only counted
};

/// The files of a library that have an identifier, and their folders. Immutable once built; shared
/// between threads.
class FolderIndex {
  public:
    explicit FolderIndex(FolderScan scan);

    /// By modification time, then path.
    const std::vector<KnownFile>& files() const { return files_; }
    const std::vector<Folder>& folders() const { return folders_; }

    const KnownFile* file(const QUuid& identifier) const;
    const Folder* album(const QUuid& identifier) const;
    const Folder* list(const QUuid& identifier) const;
    bool isList(const Folder& folder) const;

    /// True when a folder gained, lost or renamed an entry since the scan.
    bool isOutdated(const std::filesystem::path& root) const;

    /// The same files and folders, at the same times.
    bool operator==(const FolderIndex& other) const {
        return files_ == other.files_ && folders_ == other.folders_ &&
               hasUnfinished_ == other.hasUnfinished_;
    }

    /// True when a file was left out because it was being written.
    bool hasUnfinished() const { return hasUnfinished_; }

  private:
    auto identifierAt() const {
        return [this](std::size_t position) -> const QUuid& { return files_[position].identifier; };
    }

    std::vector<KnownFile> files_;
    std::vector<Folder> folders_;
    bool hasUnfinished_;
    std::vector<std::size_t> byIdentifier_; ///< positions of the files
};

/// Tells libraries apart: made from what the file system says of the root, else from its canonical
/// path.
QUuid folderLibraryIdentifier(const std::filesystem::path& root);

/// A version 5 UUID (RFC 4122) out of the library, the path, the size and the modification time: a
/// version of a file that nobody touched gets the same one again when everything was forgotten.
/// `other` is an identifier that this version must not share: of the version before, or of another
/// file that has the same one already.
QUuid folderFileIdentifier(const QUuid& library, const KnownFile& file, const QUuid& other = {});

/// The identifiers of what has this path inside the library.
QUuid folderAlbumIdentifier(const std::string& path);
QUuid folderListIdentifier(const std::string& path);

} // namespace quorvane
