#include "support/TemporaryFolder.h"

#include <QDir>

namespace quorvane::test {

std::filesystem::path TemporaryFolder::write(const std::filesystem::path& name,
                                             const QByteArray& bytes) const {
    const std::filesystem::path file = path() / name;
    std::filesystem::create_directories(file.parent_path());
    replaceFile(file, bytes, 0644);
    return file;
}

std::filesystem::path sourceFolder() {
    return QUORVANE_SOURCE_DIR;
}

std::filesystem::path programFolder() {
    return QUORVANE_BIN_DIR;
}

QByteArray readFile(const std::filesystem::path& file) {
    return readWholeFile(file, std::int64_t(1) << 32);
}

std::ptrdiff_t entriesIn(const std::filesystem::path& folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

std::filesystem::path realDataFolder() {
    const auto folder = pathFrom(qEnvironmentVariable("QUORVANE_TEST_DATA"));
    return std::filesystem::is_directory(folder / "media") ? folder : std::filesystem::path();
}

} // namespace quorvane::test
