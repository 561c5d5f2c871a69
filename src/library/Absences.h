#pragma once

#include "library/PhotoLibrary.h"
#include "store/RecordLife.h"

namespace quorvane {

/// Leaves the records of those assets out whose original is not on this machine, and takes those
/// back whose original came. A record that was staged before keeps its turn: its copy may be all
/// that there is. Returns how many assets came back. Throws `PhotoLibraryError`, `DBError`,
/// `Cancelled`.
int settleAbsences(const std::vector<PhotoAsset>& assets, PhotoLibrary& library,
                   DatabaseManager& database, RecordLife& life, const std::stop_token& stop);

/// The code under which an absence is stored.
QString codeOf(const AbsentOriginal& absence);

} // namespace quorvane
