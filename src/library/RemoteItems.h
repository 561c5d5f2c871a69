#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <set>
#include <stop_token>

namespace quorvane {

/// Asks the destination about the media items that it once created.
class RemoteItems {
  public:
    virtual ~RemoteItems() = default;

    /// Those of `remoteIDs` that are still there; none when the account does not allow to ask. At
    /// most `atOnce` in one call. Any thread; blocks. Throws when no answer came, or `Cancelled`.
    virtual std::optional<std::set<QString>> existing(const QStringList& remoteIDs,
                                                      std::stop_token stop) = 0;

    static constexpr qsizetype atOnce = 50;
};

} // namespace quorvane
