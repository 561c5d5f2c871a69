#pragma once

#include "foundation/Clock.h"
#include "foundation/Date.h"
#include "sqlite/DatabaseSnapshot.h"
#include "sqlite/Sqlite.h"

#include <QString>

#include <filesystem>
#include <mutex>
#include <optional>

namespace quorvane {

/// Asks the Photos library's own database when an asset was made: it still knows assets that the
/// library no longer hands out. Works on a private copy, so the library is never touched and never
/// waited for. Any thread.
class PhotosDateQuery {
  public:
    /// The database is looked for in `picturesFolder`, once, when first asked.
    PhotosDateQuery(std::filesystem::path picturesFolder, Clock& clock)
        : picturesFolder_(std::move(picturesFolder)), clock_(clock) {}

    /// When the asset of this local identifier was made, else added. None when the row or the
    /// database is not there or not readable.
    std::optional<Date> queryDateFromPhotosSQLite(const QString& identifier) noexcept;

  private:
    /// A connection to the copy and its one statement.
    struct Session {
        explicit Session(const std::filesystem::path& file);
        sqlite::Connection connection;
        sqlite::Statement statement;
    };

    const std::optional<std::filesystem::path>& cachedPhotosDatabaseURL();
    Session* currentSession();

    const std::filesystem::path picturesFolder_;
    Clock& clock_;

    std::mutex mutex_; ///< guards what follows; held during a copy and a query, both short
    bool looked_ = false;
    std::optional<std::filesystem::path> cachedPhotosDatabaseURL_;
    std::optional<DatabaseSnapshot> copy_;
    std::optional<Session> session_;
    std::optional<Clock::Monotonic> failedAt_;
};

} // namespace quorvane
