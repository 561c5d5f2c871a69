#include "sqlite/PrivateFolder.h"

#include "foundation/System.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::time_t secondsOfAnHour = 3600;
constexpr std::string_view prefix = "quorvane-photos-";

/// An empty folder of this hour is left alone: its owner may be about to lock it.
bool isBeingMade(const std::filesystem::path& folder, const struct stat& status) {
    std::error_code error;
    return std::filesystem::is_empty(folder, error) &&
           ::time(nullptr) - system::modificationTime(status).tv_sec < secondsOfAnHour;
}

/// Another user's is left alone.
void removeIfLeftOver(const std::filesystem::path& folder) {
    const FileDescriptor lock(
        ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    std::error_code error;
    if (lock.isOpen() && ::fstat(lock.get(), &status) == 0 && status.st_uid == ::geteuid() &&
        ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0 && !isBeingMade(folder, status))
        std::filesystem::remove_all(folder, error);
}

} // namespace

PrivateFolder::PrivateFolder(const std::filesystem::path& parent) {
    std::error_code error;
    std::filesystem::create_directories(parent, error);
    for (const auto& entry : std::filesystem::directory_iterator(parent, error))
        if (entry.path().filename().native().starts_with(prefix))
            removeIfLeftOver(entry.path());
    std::string name = (parent / prefix).native() + "XXXXXX";
    if (!::mkdtemp(name.data()))
        throw FileError(QStringLiteral("Geçici klasör oluşturulamadı"), parent, errno);
    path_ = name;
    lock_ = openFile(path_, O_RDONLY | O_DIRECTORY);
    ::flock(lock_.get(), LOCK_EX);
}

PrivateFolder::~PrivateFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

} // namespace quorvane
