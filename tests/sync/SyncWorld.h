#pragma once

#include "emulator/GoogleEmulator.h"
#include "foundation/Console.h"
#include "foundation/Preferences.h"
#include "foundation/UserFolders.h"
#include "google/CurlHttpClient.h"
#include "google/GoogleAlbumManager.h"
#include "google/ScriptedHttp.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"
#include "sync/Engine.h"

#include <future>

namespace quorvane::test {

/// How many records there are of each status; absent means none.
using Counts = std::map<SyncStatus, int>;

/// What outlives a run of the program: the person's pictures and Google's service.
struct SyncWorld {
    TemporaryFolder folder;
    std::filesystem::path pictures = folder / "library";
    GoogleEmulator google;
    QString accessToken;

    SyncWorld();

    /// Writes a small picture of its own; without a date of its own when `exifDate` is none.
    void addPicture(const QString& name,
                    const std::optional<QByteArray>& exifDate = QByteArray("2021:03:05 18:22:10"));
    /// "000.jpg" and so on, dated.
    void addPictures(int count);

    /// How often each content (lower-case hexadecimal SHA-256) is among the service's items.
    std::map<QString, int> storedContents() const;

  private:
    std::uint32_t pictureCount_ = 0;
};

/// HTTP over the real client that counts, and lets a test step in before or after a request.
class WatchedHttp final : public HttpClient {
  public:
    using Hook = std::function<void(int number)>; ///< numbered from 1; may throw

    HttpResponse send(const HttpRequest& request, std::stop_token stop) override;

    Hook before = [](int) {}; ///< these two are called on the sending threads
    Hook after = [](int) {};
    int mostAtOnce() const { return mostAtOnce_; }

  private:
    CurlHttpClient http_;
    std::atomic<int> number_ = 0;
    std::atomic<int> inFlight_ = 0;
    std::atomic<int> mostAtOnce_ = 0;
};

/// What the engine of a test works with.
struct Surroundings {
    Surroundings(SyncWorld& world, const std::filesystem::path& home);

    UserFolders folders;
    FixedToken tokens;
    Console console;
    RecordingLog log;
    FakeClock clock;
    FakeClock batchClock;
    Preferences preferences;
    WatchedHttp http;
    TransferActivityTracker tracker{clock};
    GoogleEndpoints endpoints;
    GoogleLibraryApi api;
    GoogleAlbumManager albums;
    GoogleDestination destination;
};

/// The sync engine and all it works with, over one home folder. Only the clocks are not real, and
/// the batches' own stands still: nothing is sent before the 25th entry or the end of a pass.
class SyncProgram : public Surroundings, private Engine {
  public:
    explicit SyncProgram(SyncWorld& world, StageAhead::Limits stagingLimits = {})
        : SyncProgram(world, world.folder / "home", stagingLimits) {}
    SyncProgram(SyncWorld& world, const std::filesystem::path& home,
                StageAhead::Limits stagingLimits = {});

    using Engine::attempts;
    using Engine::coordinator;
    using Engine::database;
    using Engine::flags;
    using Engine::library;
    using Engine::life;
    using Engine::staging;

    /// Records every picture of the library as DISCOVERED, in its order.
    void discover();

    /// One whole run, and what it printed.
    SyncCoordinator::Summary run();
    QStringList printed;

    /// The same in two halves. `finish` waits, then delivers what was posted to the main thread.
    void start();
    SyncCoordinator::Summary finish();
    /// Stops the run that was started, and says how long it took to end.
    std::chrono::milliseconds stop();

    /// The identifier that a picture has in the library.
    QString identifierOf(const QString& name) const;
    SyncRecord record(const QString& name);
    Counts counts();
    QStringList linesWith(const QString& part) const { return printed.filter(part); }
    QStringList messagesWith(const QString& part) const { return log.messages().filter(part); }
    std::filesystem::path stagedPath(const QString& name) const;
    int stagedFiles() const;

    SyncCoordinator::ProgressHandler onProgress;
    World::Patience patience = World::endless;

  private:
    std::map<QString, QString> identifiers_; ///< by name, as discovered
    std::future<SyncCoordinator::Summary> run_;
};

/// Every asset is VERIFIED, and the service holds the bytes of each exactly once.
void expectAllStoredOnce(const SyncWorld& world, SyncProgram& program, int count);

/// A fault of the service that does nothing yet; `times` 0 means for ever.
emulator::Disturbance faultOf(emulator::RequestKind kind, int nth = 1, int times = 1);
/// Uploads answered with 500.
emulator::Disturbance refusal(int nth, int times);
/// No request of the kind is ever answered.
emulator::Disturbance stall(emulator::RequestKind kind);

} // namespace quorvane::test
