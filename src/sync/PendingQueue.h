#pragma once

#include "foundation/Guarded.h"
#include "sync/BatchCoordinator.h"
#include "sync/Recognition.h"

#include <set>
#include <vector>

namespace quorvane {

/// Which pending records a run takes next, oldest first: none of those that wait for their item,
/// nor of those that the run found without a file. Throws `DBError`.
class PendingQueue {
  public:
    PendingQueue(DatabaseManager& database, BatchCoordinator& batches, Recognition& recognition)
        : db_(database), batches_(batches), recognition_(recognition) {}

    /// A new run.
    void begin();

    /// How many are pending, without those that wait for their item.
    int count();

    /// At most `most` records. What was found at the destination already is VERIFIED on the way;
    /// `recognised` is called with how many. A copy of bytes that are under way waits until nothing
    /// else is left. While no worker runs. Throws `Cancelled`.
    std::vector<SyncRecord> next(int most, const std::function<void(int)>& recognised,
                                 const std::stop_token& stop);

    /// The library cannot hand out the record's file now; it stays pending for a later run. Any
    /// thread.
    void setUnavailable(const SyncRecord& record);
    int unavailable();

  private:
    std::vector<SyncRecord> fetch(int most);

    DatabaseManager& db_;
    BatchCoordinator& batches_;
    Recognition& recognition_;
    Guarded<std::set<QString>> unavailable_;
};

} // namespace quorvane
