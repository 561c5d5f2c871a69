#include "platform/bundle/FoldersBeneath.h"

#include "library/FileExport.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvane {

namespace {

constexpr std::size_t foldersAtOnce = 64; // each is a descriptor

} // namespace

bool FoldersBeneath::isMissing(const std::filesystem::path& relative) {
    const Folder& folder = this->folder(relative.parent_path());
    if (!folder.file.isOpen())
        return folder.isMissing;
    struct stat status {};
    return ::fstatat(folder.file.get(), relative.filename().c_str(), &status,
                     AT_SYMLINK_NOFOLLOW) != 0 &&
           errno == ENOENT;
}

const FoldersBeneath::Folder& FoldersBeneath::folder(const std::filesystem::path& relative) {
    if (const auto known = folders_.find(relative); known != folders_.end())
        return known->second;
    if (folders_.size() >= foldersAtOnce)
        folders_.clear();
    Folder folder;
    try {
        folder.file = openFolderOf(root_, relative / "any");
    } catch (const FileError& error) {
        // Without the root, an unplugged disk's, nothing is known of what was below it.
        std::error_code away;
        folder.isMissing =
            error.errorNumber() == ENOENT && std::filesystem::is_directory(root_, away);
    }
    return folders_.emplace(relative, std::move(folder)).first->second;
}

} // namespace quorvane
