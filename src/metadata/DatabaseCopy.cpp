#include "metadata/DatabaseCopy.h"

#include "foundation/File.h"

#include <QDir>

#include <cerrno>

#include <sys/stat.h>

namespace quorvane {

namespace {

constexpr const char* logSuffix = "-wal";
constexpr const char* indexSuffix = "-shm";
constexpr int attempts = 3;

std::filesystem::path withSuffix(std::filesystem::path file, const char* suffix) {
    file += suffix;
    return file;
}

} // namespace

DatabaseCopy::Stamp DatabaseCopy::stampOf(const std::filesystem::path& file) {
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0)
        return {};
    return {info.st_ino, info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
}

DatabaseCopy::State DatabaseCopy::currentState() const {
    return {stampOf(original_), stampOf(withSuffix(original_, logSuffix))};
}

bool DatabaseCopy::isCurrent() const {
    return copied_ && *copied_ == currentState();
}

void DatabaseCopy::refresh() {
    if (!folder_)
        folder_.emplace(QDir::tempPath() + QStringLiteral("/quorvane-photos-XXXXXX"));
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const State before = currentState();
        const std::optional<State> old = std::exchange(copied_, std::nullopt);
        if (!old || old->database != before.database)
            copy("");
        copy(logSuffix);
        std::error_code ignored;
        std::filesystem::remove(withSuffix(file(), indexSuffix), ignored);
        if (currentState() == before) {
            copied_ = before;
            return;
        }
    }
    throw FileError(QStringLiteral("Veritabanı kopyalanamadı"), original_, EBUSY);
}

std::filesystem::path DatabaseCopy::file() const {
    return pathFrom(folder_->path()) / "copy.sqlite";
}

void DatabaseCopy::copy(const char* suffix) const {
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
