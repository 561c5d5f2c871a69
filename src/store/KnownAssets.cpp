#include "store/KnownAssets.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace quorvane {

namespace {

constexpr const char* allIdentifiers =
    R"sql(SELECT asset_local_identifier FROM sync_records WHERE provider_id = ? AND account_id = ?)sql";

/// Positions in a list of identifiers, in the order of these.
class SortedPositions {
    struct At {
        const std::vector<const AssetIdentifier*>& identifiers;
        const AssetIdentifier& operator()(std::uint32_t position) const {
            return *identifiers[position];
        }
    };

  public:
    explicit SortedPositions(const std::vector<const AssetIdentifier*>& identifiers)
        : at_{identifiers}, sorted_(identifiers.size()) {
        std::iota(sorted_.begin(), sorted_.end(), 0U);
        std::ranges::sort(sorted_, {}, at_);
        next_ = sorted_.begin();
    }

    /// Those that have this identifier. The index yields what it has in nearly the same order, so
    /// mostly the next one is asked for.
    std::span<const std::uint32_t> find(const AssetIdentifier& identifier) {
        if (next_ == sorted_.end() || at_(*next_) != identifier)
            next_ = std::ranges::lower_bound(sorted_, identifier, {}, at_);
        const auto first = next_;
        while (next_ != sorted_.end() && at_(*next_) == identifier)
            ++next_;
        return {first, next_};
    }

  private:
    const At at_;
    std::vector<std::uint32_t> sorted_;
    std::vector<std::uint32_t>::const_iterator next_;
};

} // namespace

std::vector<bool> areKnown(const std::vector<const AssetIdentifier*>& identifiers,
                           DatabaseManager& database) {
    std::vector<bool> known(identifiers.size());
    if (identifiers.empty())
        return known;
    database.onConnection([&](sqlite::Connection& connection) {
        sqlite::Statement row(connection, allIdentifiers);
        row.bind(1, googlePhotosProvider);
        row.bind(2, pendingAccount);
        std::optional<SortedPositions> positions; // a store without records needs none
        while (row.step()) {
            if (!positions)
                positions.emplace(identifiers);
            for (const std::uint32_t position : positions->find(AssetIdentifier::of(row.view(0))))
                known[position] = true;
        }
    });
    return known;
}

} // namespace quorvane
