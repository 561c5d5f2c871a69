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
    // Texts: comparing paths takes them apart each time.
    const std::string& whole = relative.native();
    const std::size_t name = whole.rfind('/') + 1; // npos + 1 is 0
    const Folder& folder = this->folder(std::string_view(whole).substr(0, name));
    if (!folder.file.isOpen())
        return folder.isMissing;
    struct stat status {};
    return ::fstatat(folder.file.get(), whole.c_str() + name, &status, AT_SYMLINK_NOFOLLOW) != 0 &&
           errno == ENOENT;
}

const FoldersBeneath::Folder& FoldersBeneath::folder(std::string_view relative) {
    if (const auto known = folders_.find(relative); known != folders_.end())
        return known->second;
    if (folders_.size() >= foldersAtOnce)
        folders_.clear();
    Folder folder;
    try {
        folder.file = openFolderOf(root_, std::filesystem::path(relative) / "any");
    } catch (const FileError& error) {
        // Without the root, an unplugged disk's, nothing is known of what was below it.
        std::error_code away;
        folder.isMissing =
            error.errorNumber() == ENOENT && std::filesystem::is_directory(root_, away);
    }
    return folders_.emplace(std::string(relative), std::move(folder)).first->second;
}

} // namespace quorvane
