#pragma once

#include "app/Composition.h"
#include "emulator/GoogleEmulator.h"
#include "google/CurlHttpClient.h"
#include "google/FakeKeychain.h"
#include "google/OAuthWorld.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <future>

namespace quorvane::test {

/// How many records there are of each status; absent means none.
using Counts = std::map<SyncStatus, int>;

/// What outlives a run of the program: the person's pictures and Google's service.
struct SyncWorld {
    TemporaryFolder folder;
    std::filesystem::path pictures = folder / "library";
    GoogleEmulator google;

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

/// Nobody is there to agree to a deletion.
class NoConfirmation final : public DeletionConfirmation {
  public:
    bool confirmDeletion(const DeletionQuestion&) override { return false; }
};

/// What is outside of a program: times that only a test moves, a network that it watches, a keyring
/// and a browser of its own, and the local Google service.
struct Outside {
    explicit Outside(Console::Channel channel) : console(channel) {}

    Console console;
    FakeClock clock;
    FakeClock batchClock; ///< stands still: a batch goes when it is full, or at the end of a pass
    WatchedHttp http;
    FakeKeychain keychain;
    ScriptedSession browser;
    NoConfirmation confirmation;
};

/// The program's own house over one home folder. Nobody is signed in.
struct TestHouse : Outside {
    /// `asked` none: nobody agrees to a deletion.
    TestHouse(SyncWorld& world, const std::filesystem::path& home,
              Console::Channel channel = Console::Channel::standardOutput,
              DeletionConfirmation* asked = nullptr);

    /// Puts the tokens of an earlier sign-in where the program looks for them.
    void haveSignedIn(SyncWorld& world);

    CoreServices core;
    GoogleServices google;
    RecordingLog log; ///< what the program's log got
    Subscription recording;
};

/// The engine on top of it, signed in, over the world's pictures.
class TestProgram : public TestHouse {
  public:
    explicit TestProgram(SyncWorld& world, StageAhead::Limits ahead = {})
        : TestProgram(world, world.folder / "home", ahead) {}
    TestProgram(SyncWorld& world, const std::filesystem::path& home, StageAhead::Limits ahead = {});

    /// Records every picture of the library as DISCOVERED, in its order.
    void discover();

    /// The whole drain of the queue, and what it printed.
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
    LibraryServices services_;
    std::map<QString, QString> identifiers_; ///< by name, as discovered
    std::future<SyncCoordinator::Summary> run_;

  public:
    PhotoLibrary& library = *services_.library;
    DatabaseManager& database = services_.state.db;
    RecordLife& life = services_.state.life;
    AssetStagingService& staging = services_.staging;
    Attempts& attempts = services_.attempts;
    RunFlags& flags = services_.flags;
    SyncCoordinator& coordinator = services_.coordinator;
};

/// Every asset is VERIFIED, and the service holds the bytes of each exactly once.
void expectAllStoredOnce(const SyncWorld& world, TestProgram& program, int count);

/// A fault of the service that does nothing yet; `times` 0 means for ever.
emulator::Disturbance faultOf(emulator::RequestKind kind, int nth = 1, int times = 1);
/// Uploads answered with 500.
emulator::Disturbance refusal(int nth, int times);
/// No request of the kind is ever answered.
emulator::Disturbance stall(emulator::RequestKind kind);

} // namespace quorvane::test
