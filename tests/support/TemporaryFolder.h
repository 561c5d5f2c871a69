#pragma once

#include "foundation/File.h"

#include <QTemporaryDir>

#include <filesystem>

namespace quorvane::test {

/// A folder that is removed with everything in it.
class TemporaryFolder {
  public:
    std::filesystem::path path() const { return pathFrom(folder_.path()); }
    std::filesystem::path operator/(const std::filesystem::path& name) const {
        return path() / name;
    }

    /// Writes a file (folders included) and returns its path.
    std::filesystem::path write(const std::filesystem::path& name, const QByteArray& bytes) const;

  private:
    QTemporaryDir folder_;
};

/// Where the sources are, and the programs that were built from them.
std::filesystem::path sourceFolder();
std::filesystem::path programFolder();

QByteArray readFile(const std::filesystem::path& file);

/// How many things lie directly in a folder.
std::ptrdiff_t entriesIn(const std::filesystem::path& folder);

/// The folder of real libraries and pictures, which the variable QUORVANE_TEST_DATA names. Empty
/// when it is absent: such a test says so with GTEST_SKIP.
std::filesystem::path realDataFolder();

} // namespace quorvane::test

/// Skips the running test, loudly, where the real data is absent.
#define QUORVANE_REQUIRE_REAL_DATA()                                                               \
    if (quorvane::test::realDataFolder().empty())                                                  \
    GTEST_SKIP() << "the real libraries and pictures are absent (set QUORVANE_TEST_DATA)"
