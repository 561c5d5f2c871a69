#include "app/SystemPorts.h"
#include "app/cli/SignIn.h"
#include "bench/MadeLibraries.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>

#include <sys/resource.h>

/// Measures discovery in a big made-up library: into an empty store, again, and of what changes
/// while it is watched.
namespace quorvane::bench {

namespace {

constexpr int dropped = 1000;
constexpr std::chrono::minutes patience{5};

class NoConsent final : public DeletionConfirmation {
  public:
    bool confirmDeletion(const DeletionQuestion&) override { return false; }
};

/// Passes on what the product's own observer gets, and counts what that ignores.
class Counter final : public LibraryChangeObserver {
  public:
    Counter(LibraryChangeObserver& next, AssetFetchResult result)
        : next_(next), result_(std::move(result)) {}
    void photoLibraryDidChange(const LibraryChange& change) override {
        next_.photoLibraryDidChange(change);
        if (const auto details = change.changeDetails(result_)) {
            result_ = details->fetchResultAfterChanges;
            changed += details->changedObjects.size();
        }
    }
    std::atomic<std::size_t> changed = 0;

  private:
    LibraryChangeObserver& next_;
    AssetFetchResult result_;
};

/// The program's own house, in a home of its own.
struct World {
    explicit World(const std::filesystem::path& home)
        : core({home, home / "Pictures", home / "temporary"}, system.with(console, consent)) {}

    Console console{Console::Channel::silent};
    NoConsent consent;
    SystemPorts system;
    cli::NoAuthSession signIn;
    CoreServices core;
    GoogleServices google{core, signIn};
};

int stored(DatabaseManager& db) {
    int count = 0;
    for (const auto& [status, number] : db.countByStatus())
        count += number;
    return count;
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// Wall time, processor time and peak memory of a step.
class Step {
  public:
    Step(const char* name, const SystemClock& clock)
        : name_(name), clock_(clock), began_(clock.monotonic()), used_(processor()) {}
    ~Step() {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        std::printf("%-28s %8.2f s   processor %7.2f s   peak memory %5ld MiB\n", name_,
                    std::chrono::duration<double>(clock_.monotonic() - began_).count(),
                    processor() - used_, usage.ru_maxrss / 1024);
    }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

  private:
    static double processor() {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        return seconds(usage.ru_utime) + seconds(usage.ru_stime);
    }

    const char* name_;
    const SystemClock& clock_;
    const Clock::Monotonic began_;
    const double used_;
};

bool waitFor(SystemClock& clock, const std::function<bool()>& condition) {
    const auto end = clock.monotonic() + patience;
    while (!condition()) {
        if (clock.monotonic() > end)
            return false;
        clock.sleep(std::chrono::milliseconds(200), {}); // counting takes a while itself
    }
    return true;
}

/// Measures the library at `path`, of `count` pictures; `change` adds `added` and changes
/// `changed`.
int measure(World& world, const std::filesystem::path& path, int count, int added,
            std::size_t changed, const std::function<void()>& change) {
    LibraryServices services(world.core, world.google, LibraryAt(world.core, path));
    for (const char* scan : {"first scan into the store", "second scan"}) {
        const Step step(scan, world.system.clock);
        services.observer.initialScan();
    }
    Counter counter(services.observer, services.library->fetchAssets());
    services.library->registerChangeObserver(counter);
    change();
    bool noticed = false;
    {
        const Step step("changes noticed, recorded", world.system.clock);
        noticed = waitFor(world.system.clock, [&] {
            return stored(services.state.db) == count + added && counter.changed >= changed;
        });
    }
    services.library->unregisterChangeObserver(counter);
    const int recorded = stored(services.state.db);
    std::printf("%d recorded, %d expected; %zu changed\n", recorded, count + added,
                counter.changed.load());
    return noticed && recorded == count + added ? 0 : 1;
}

int run(const QString& kind, int count) {
    const QTemporaryDir folder;
    const std::filesystem::path root = pathFrom(folder.path());
    World world(root / "home");
    if (kind == u"bundle") {
        const auto path = root / "Made.photoslibrary";
        MadeBundle made(path, count);
        return measure(world, path, count, 1, 1, [&] { made.change(); });
    }
    makeFiles(root / "pictures", "a", count);
    return measure(world, root / "pictures", count, dropped, 0,
                   [&] { makeFiles(root / "pictures", "b", dropped); });
}

} // namespace

} // namespace quorvane::bench

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const int count = words.value(2).toInt();
    if (words.size() != 3 || (words[1] != u"bundle" && words[1] != u"folder") || count <= 0) {
        std::fputs("usage: quorvane-bench-library bundle|folder COUNT\n", stderr);
        return 2;
    }
    return quorvane::bench::run(words[1], count);
}
