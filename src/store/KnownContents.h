#pragma once

#include "foundation/Guarded.h"
#include "store/DatabaseManager.h"

#include <filesystem>

namespace quorvane {

/// Which originals' bytes went to the destination, or are on their way, as the states of one
/// account remember it. Any thread. A state that cannot be read knows nothing.
class KnownContents {
  public:
    /// `others` are the database files of the account's other states; they are only read.
    KnownContents(DatabaseManager& own, const std::vector<std::filesystem::path>& others);

    /// True when some original of this sample is known.
    bool hasSample(std::int64_t sample);

    struct Found {
        QStringList remoteIDs;   ///< the media items made of the same bytes
        bool isUnderWay = false; ///< another record of this state is about to be sent with them
    };
    /// `identifier` is the asset that is asked for.
    Found find(std::int64_t sample, const QString& sha256, const QString& identifier);

  private:
    DatabaseManager& own_;
    Guarded<std::vector<std::unique_ptr<sqlite::Connection>>> others_;
};

} // namespace quorvane
