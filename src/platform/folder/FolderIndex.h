#pragma once

#include <QUuid>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quorvane {

/// One picture or movie. Paths are the bytes of the path inside the library, whatever they are.
struct FolderFile {
    std::string path;
    QUuid identifier;          ///< made from the path
    std::int64_t modified = 0; ///< nanoseconds since 1970

    bool operator==(const FolderFile&) const = default;
};

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

/// What one scan of a folder tree found. Immutable once built; shared between threads.
class FolderIndex {
  public:
    /// `folders` lists every folder before its sub-folders, the library itself first.
    FolderIndex(std::vector<FolderFile> files, std::vector<Folder> folders,
                std::vector<std::size_t> folderOfFile, bool hasUnfinished);

    /// By modification time, then path.
    const std::vector<FolderFile>& files() const { return files_; }
    const std::vector<Folder>& folders() const { return folders_; }

    const FolderFile* file(const QUuid& identifier) const;
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

    std::vector<FolderFile> files_;
    std::vector<Folder> folders_;
    bool hasUnfinished_;
    std::vector<std::size_t> byIdentifier_; ///< positions of the files
};

/// Tells libraries apart, so that files of the same path in two of them are two assets: follows
/// from the canonical path of the root.
QUuid folderLibraryIdentifier(const std::filesystem::path& root);

/// The identifiers of what has this path inside the library.
QUuid folderFileIdentifier(const QUuid& library, const std::string& path);
QUuid folderAlbumIdentifier(const std::string& path);
QUuid folderListIdentifier(const std::string& path);

} // namespace quorvane
