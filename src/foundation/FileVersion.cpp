#include "foundation/FileVersion.h"

#include "foundation/File.h"
#include "foundation/System.h"

#include <cerrno>

#include <sys/stat.h>

namespace quorvane {

namespace {

std::int64_t nanoseconds(const struct timespec& time) {
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

} // namespace

FileVersion FileVersion::of(const struct stat& status) {
    return {status.st_size, nanoseconds(system::modificationTime(status)),
            nanoseconds(system::statusChangeTime(status)), status.st_ino};
}

std::optional<FileVersion> fileVersion(const std::filesystem::path& path) noexcept {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return FileVersion::of(status);
}

FileVersion fileVersion(int descriptor, const std::filesystem::path& path) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0)
        throw FileError(QStringLiteral("Dosya okunamadı"), path, errno);
    return FileVersion::of(status);
}

} // namespace quorvane
