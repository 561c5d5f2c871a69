#pragma once

#include "google/OAuthWorld.h"
#include "sync/SyncWorld.h"
#include "ui/MenuBarViewModel.h"

#include <QJsonObject>

namespace quorvane::test {

/// A desktop that keeps what it was asked.
class FakeDesktop final : public Desktop {
  public:
    void notify(const QString& title, const QString& text) override {
        notices += title + QStringLiteral(": ") + text;
    }
    void open(const std::filesystem::path& file) override { opened = file; }
    bool startsAtLogin() const override { return isAutostarted; }
    void setStartsAtLogin(bool starts) override { isAutostarted = starts; }

    QStringList notices;
    std::filesystem::path opened;
    bool isAutostarted = false;
};

/// The state model over real services, the local Google service and a folder of pictures. Only the
/// desktop, the browser, the keychain and the engine's clock are not real.
class ModelWorld {
  public:
    ModelWorld();
    ~ModelWorld();

    SyncWorld world;

    /// Scans the library into the store, as the launch does.
    void openLibrary();
    void scan();
    /// A new model over the same services, as after a restart.
    void restart();
    /// Has the person sign in, and waits for it.
    void signIn();
    /// Runs the event loop until nothing is under way; false after ten seconds.
    bool settle();

    /// What changed of the published state since the last call, a line per property; values that
    /// differ from run to run (identifiers, speeds, times, how far a stopped run came) are left
    /// out.
    QString changes();

  private:
    UserFolders folders_;
    QJsonObject lastState_;

  public:
    Console console{Console::Channel::silent};
    RecordingLog log;
    Publisher<LogEntry> logPublisher;
    FakeClock clock;
    SystemClock batchClock;
    FakeDesktop desktop;
    FakeKeychain keychain;
    FakeClient client;
    ScriptedSession browser;
    std::function<bool(const QString&)> handOverURL;
    std::vector<CheckedThing> checkedThings;
    Preferences preferences;
    GoogleEndpoints endpoints;
    WatchedHttp http;
    TokenStore tokens{keychain, preferences, log};
    GoogleOAuthManager oauth{{endpoints, client, http, browser, tokens, clock, log}};
    TransferActivityTracker tracker{clock, [] { return 12; }};
    GoogleLibraryApi api{http, oauth, endpoints};
    GoogleAlbumManager albums{api, preferences, log};
    GoogleDestination destination{api, albums};
    Engine engine;
    int locksTaken = 0;

    /// Last: it uses the rest.
    std::unique_ptr<MenuBarViewModel> model;
};

} // namespace quorvane::test
