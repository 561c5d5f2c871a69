#pragma once

#include "app/LibraryHost.h"
#include "support/TestProgram.h"
#include "ui/MenuBarViewModel.h"

namespace quorvane::test {

/// A desktop that keeps what it was asked.
class FakeDesktop final : public Desktop {
  public:
    void notify(const Notice& notice) override {
        notices += notice.title + QStringLiteral(": ") + notice.text;
        latest = notice.about;
    }
    void open(const std::filesystem::path& file) override { opened = file; }
    void reveal(const std::filesystem::path& file) override { revealed = file; }
    bool startsAtLogin() const override { return isAutostarted; }
    void setStartsAtLogin(bool starts) override { isAutostarted = starts; }

    bool isNetworkMetered() const override { return isMetered; }
    void watchNetwork(std::function<void()> changed) override { networkChanged = changed; }

    bool isMetered = false;
    std::function<void()> networkChanged;
    QStringList notices;
    Notice::About latest = Notice::About::window;
    std::filesystem::path opened, revealed;
    bool isAutostarted = false;
};

/// The state model over the program's own house, the local Google service and a folder of pictures.
/// Only the desktop and what is outside of the house are not real.
class ModelWorld {
  public:
    ModelWorld();
    ~ModelWorld();

    SyncWorld world;

    /// Opens the library and scans it into the store, as the launch does.
    void openLibrary();
    void scan();
    /// A new model over the same services, as after a restart.
    void restart();
    /// Has the person sign in, and waits for it.
    void signIn();
    /// Runs the event loop until nothing is under way; false after ten seconds.
    bool settle();

  private:
    std::shared_ptr<const LibrarySession> session_;

  public:
    TrashQuestion trash;
    TestHouse house{world, world.folder / "home", Console::Channel::silent, &trash};
    LibraryHost host{house.core, house.google};
    FakeDesktop desktop;
    std::function<bool(const QString&)> handOverURL;
    std::vector<CheckedThing> checkedThings;

    RecordingLog& log = house.log;
    FakeClock& clock = house.clock;
    ScriptedSession& browser = house.browser;
    Preferences& preferences = house.core.preferences;
    Publisher<LogEntry>& logPublisher = house.core.logger.logPublisher();
    TransferActivityTracker& tracker = house.google.tracker;
    /// Of the library that is open.
    DatabaseManager& database() const { return session_->run.db; }

    /// Last: it uses the rest.
    std::unique_ptr<MenuBarViewModel> model;
};

} // namespace quorvane::test
