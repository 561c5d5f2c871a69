#pragma once

#include "store/AssetIdentifier.h"
#include "store/DatabaseManager.h"

namespace quorvane {

/// For each of the assets whether it has a record. The store's index is read once from beginning to
/// end, which for many costs a fraction of asking for each. Any thread. Throws `DBError`.
std::vector<bool> areKnown(const std::vector<const AssetIdentifier*>& identifiers,
                           DatabaseManager& database);

} // namespace quorvane
