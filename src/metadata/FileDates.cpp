#include "metadata/FileDates.h"

#include "foundation/System.h"
#include "metadata/LocalCalendar.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvane {

std::optional<Date> readFileCreationDate(const std::filesystem::path& file) noexcept {
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0)
        return std::nullopt;
    const timespec modified = system::modificationTime(info);
    return writableDate(dateFromUnixSeconds(static_cast<double>(modified.tv_sec) +
                                            static_cast<double>(modified.tv_nsec) / 1e9));
}

void setFileDates(const std::filesystem::path& file, Date date) noexcept {
    const auto second = std::chrono::floor<std::chrono::seconds>(date);
    timespec modified{};
    modified.tv_sec = second.time_since_epoch().count();
    modified.tv_nsec = std::chrono::nanoseconds(date - second).count();
    const timespec times[] = {{0, UTIME_OMIT}, modified};
    ::utimensat(AT_FDCWD, file.c_str(), times, 0);
    system::setCreationTime(file, modified);
}

} // namespace quorvane
