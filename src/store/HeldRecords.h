#pragma once

#include "store/DatabaseManager.h"

#include <map>

namespace quorvane {

/// Records that wait for a person for the same reason.
struct HeldGroup {
    enum class Kind { failed, undated, undatable };

    Kind kind = Kind::failed;
    FailedCategorySummary category;   ///< of `failed` ones; its count is that of `places`
    std::vector<std::int64_t> places; ///< in the store, the latest change first
};

/// A record that waits for a person, and what it failed by, where that is known.
struct HeldRecord {
    SyncRecord record;
    std::optional<Fault> fault = {};
};

/// What is held back, as a person reviews it. Any thread. Throws `DBError`.
class HeldRecords {
  public:
    explicit HeldRecords(DatabaseManager& database) : db_(database) {}

    /// The failed by category, the largest first; then what has no date; then what takes none. No
    /// group is empty.
    std::vector<HeldGroup> groups();

    /// By place. What is not held back any more is missing.
    std::map<std::int64_t, HeldRecord> at(const std::vector<std::int64_t>& places);

  private:
    DatabaseManager& db_;
};

} // namespace quorvane
