#include "app/SystemPorts.h"
#include "app/cli/SignIn.h"
#include "bench/Parts.h"

namespace quorvane::bench {

namespace {

class NoConsent final : public DeletionConfirmation {
  public:
    bool confirmDeletion(const DeletionQuestion&) override { return false; }
};

/// The program's own house, in a home of its own, with the library that is measured.
struct World {
    World(const std::filesystem::path& home, const std::filesystem::path& library)
        : core({home, home / "Pictures", home / "temporary"}, system.with(console, consent)),
          services(core, google, LibraryAt(core, library)) {}

    Console console{Console::Channel::silent};
    NoConsent consent;
    SystemPorts system;
    cli::NoAuthSession signIn;
    CoreServices core;
    GoogleServices google{core, signIn};
    LibraryServices services;
};

} // namespace

int scan(const QStringList& words) {
    World world(pathFrom(words[0]), pathFrom(words[1]));
    world.services.observer.initialScan();
    return world.services.state.db.countByStatus().empty() ? 1 : 0; // none has an original here
}

int stage(const QStringList& words) {
    World world(pathFrom(words[0]), pathFrom(words[1]));
    world.services.observer.initialScan();
    const int count = world.services.state.db.countPendingRecords();
    for (const SyncRecord& record : world.services.state.db.fetchPendingRecords(count))
        if (!world.services.staging.stage(record, {}))
            throw Error(QStringLiteral("Not staged: ") + record.assetLocalIdentifier);
    return 0;
}

} // namespace quorvane::bench
