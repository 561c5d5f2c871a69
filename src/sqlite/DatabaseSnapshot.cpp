#include "sqlite/DatabaseSnapshot.h"

#include "foundation/System.h"

#include <sys/stat.h>

namespace quorvane {

namespace {

constexpr const char* logSuffix = "-wal";
constexpr const char* indexSuffix = "-shm";
constexpr int attempts = 5;

std::filesystem::path withSuffix(std::filesystem::path file, const char* suffix) {
    file += suffix;
    return file;
}

} // namespace

DatabaseSnapshot::Stamp DatabaseSnapshot::stampOf(const std::filesystem::path& file) {
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0)
        return {};
    const timespec modified = system::modificationTime(info);
    return {info.st_ino, info.st_size, modified.tv_sec, modified.tv_nsec};
}

bool DatabaseSnapshot::isCurrent() const {
    return database_ == stampOf(original_) && log_ == stampOf(originalLog());
}

bool DatabaseSnapshot::refresh() {
    if (!folder_)
        folder_.emplace(workFolder_);
    log_.reset();
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const Stamp database = stampOf(original_);
        const Stamp log = stampOf(originalLog());
        if (database_ != database) {
            database_.reset();
            copy("");
        }
        copy(logSuffix);
        std::error_code ignored;
        std::filesystem::remove(withSuffix(file(), indexSuffix), ignored); // it told of the old log
        database_ = stampOf(original_) == database ? std::optional(database) : std::nullopt;
        if (database_ && stampOf(originalLog()) == log) {
            log_ = log;
            return true;
        }
    }
    return false;
}

std::filesystem::path DatabaseSnapshot::originalLog() const {
    return withSuffix(original_, logSuffix);
}

std::filesystem::path DatabaseSnapshot::file() const {
    return folder_->path() / "copy.sqlite";
}

void DatabaseSnapshot::copy(const char* suffix) const {
    const std::filesystem::path source = withSuffix(original_, suffix);
    const std::filesystem::path target = withSuffix(file(), suffix);
    std::error_code error;
    std::filesystem::remove(target, error); // it may be as read-only as its source
    std::filesystem::copy_file(source, target, error);
    if (error && !(error == std::errc::no_such_file_or_directory && suffix == logSuffix))
        throw FileError(QStringLiteral("Veritabanı kopyalanamadı"), source, error.value());
    std::filesystem::permissions(
        target, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, error);
}

} // namespace quorvane
