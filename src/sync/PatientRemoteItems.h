#pragma once

#include "library/RemoteItems.h"
#include "sync/Attempts.h"

namespace quorvane {

/// Asks the destination in a run's patience: an outage is waited for, and is no answer.
class PatientRemoteItems final : public RemoteItems {
  public:
    PatientRemoteItems(RemoteItems& items, Attempts& attempts)
        : items_(items), attempts_(attempts) {}

    std::optional<std::set<QString>> existing(const QStringList& remoteIDs,
                                              std::stop_token stop) override {
        return attempts_.patiently(stop, [&] { return items_.existing(remoteIDs, stop); });
    }

  private:
    RemoteItems& items_;
    Attempts& attempts_;
};

} // namespace quorvane
