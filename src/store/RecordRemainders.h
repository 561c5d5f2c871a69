#pragma once

#include "store/DatabaseManager.h"

namespace quorvane {

/// How much of what was sent stays in the library alone: assets, by what is lacking.
struct RemainderCounts {
    int edits = 0;
    int movies = 0;     ///< of live photos
    int raws = 0;       ///< halves of pairs
    int originals = 0;  ///< of which the edited version was sent
    int duplicates = 0; ///< whose very bytes another asset has: one item stands for both

    bool operator==(const RemainderCounts&) const = default;
    /// Counts an asset by its bits.
    void add(int behind);
};

/// What of an asset is not in the file that is sent for it. Written by `RecordLife` alone. Any
/// thread. Throws `DBError`.
class RecordRemainders {
  public:
    enum Part : int { edit = 1, movie = 2, raw = 4, original = 8 };

    explicit RecordRemainders(DatabaseManager& database) : db_(database) {}

    /// Of the assets that are at the destination.
    RemainderCounts counts() const;

  private:
    friend class RecordLife;
    void set(const QString& identifier, int behind);

    DatabaseManager& db_;
};

} // namespace quorvane
