#include "platform/macos/FileManagerTrash.h"

#include "library/FileExport.h"
#include "platform/macos/CocoaText.h"

#include <cerrno>

#include <fcntl.h>

namespace quorvane {

std::filesystem::path FileManagerTrash::homeTrash() {
    @autoreleasepool {
        return pathFrom(textOf(NSHomeDirectory())) / ".Trash";
    }
}

std::string FileManagerTrash::take(const FileDescriptor&, const std::filesystem::path& path) {
    @autoreleasepool {
        NSError* error = nil;
        NSURL* inTrash = nil;
        if (![[NSFileManager defaultManager]
                  trashItemAtURL:[NSURL fileURLWithPath:stringOf(pathText(path))]
                resultingItemURL:&inTrash
                           error:&error])
            throw Error(QStringLiteral("Çöp Kutusu'na taşınamadı: %1 (%2)")
                            .arg(pathText(path), reasonOf(error)));
        return textOf([inTrash path]).toStdString();
    }
}

struct stat FileManagerTrash::statusOf(const std::string& name) const {
    struct stat status {};
    if (::lstat(name.c_str(), &status) != 0)
        throw FileError(QStringLiteral("Çöp Kutusu'na bakılamadı"), name, errno);
    return status;
}

bool FileManagerTrash::giveBack(const std::string& name, const FileDescriptor& folder,
                                const std::filesystem::path& path) noexcept {
    return renameToNew(AT_FDCWD, name, folder.get(), path.filename()) == 0;
}

} // namespace quorvane
