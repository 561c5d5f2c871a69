#pragma once

#include "store/Sqlite.h"

#include <filesystem>

/// Libraries of any size, with nothing in the files.
namespace quorvane::bench {

/// The database of a Photos bundle of `count` pictures in albums of a thousand; rows are about as
/// long as real ones.
class MadeBundle {
  public:
    MadeBundle(const std::filesystem::path& bundle, int count);

    /// As Photos would while it runs: one picture more, and another date for the first one.
    void change();

  private:
    sqlite::Connection database_;
};

/// Empty files "<prefix><number>.jpg", a thousand to a folder.
void makeFiles(const std::filesystem::path& folder, const char* prefix, int count);

} // namespace quorvane::bench
