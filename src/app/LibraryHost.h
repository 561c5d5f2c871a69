#pragma once

#include "app/Composition.h"
#include "foundation/TaskRunner.h"
#include "ui/LibrarySession.h"

#include <QTimer>

#include <functional>
#include <optional>

namespace quorvane {

/// The library that the window works with: chosen once, remembered, opened at each start, replaced
/// when another one is chosen. Main thread; looking at a disk happens elsewhere.
class LibraryHost {
  public:
    using Answer = std::function<void(AuthorizationStatus)>;

    LibraryHost(CoreServices& core, GoogleServices& google);

    /// Called with each library that proved readable, and with the session that works on it.
    std::function<void(std::shared_ptr<const LibrarySession>)> onOpened;
    /// Called when the library that was chosen is not where it was.
    std::function<void(const AwayLibrary&)> onAway;
    /// Called when the open library's assets were recorded anew.
    std::function<void()> onChanged;

    /// The status of the remembered library, which is opened when it is readable; not determined
    /// before any was chosen.
    void openRemembered(Answer answer);

    /// Has the system ask for the library of the Photos application, and opens it.
    void requestPhotos(Answer answer);

    /// Opens the library at `path` and remembers it if it is readable; else the earlier one stays.
    void open(const std::filesystem::path& path, Answer answer);

    /// Finds out whether the library is where it was. One that has come back is opened; while it is
    /// away this is done anew now and then.
    void look();

    /// Opens the same library again, with the state of the account that is signed in now, unless
    /// that is the one that is open. While nobody is signed in the last one's stays.
    void accountDidChange();

    /// Remembers other choices for the library that is open, and opens it again with them.
    void choose(const LibraryChoices& choices);

    /// Starts and stops the discovery in the library that is open. None is open: nothing happens.
    void startObserver();
    void stopObserver();

  private:
    struct OpenLibrary;

    std::shared_ptr<OpenLibrary> make(const std::filesystem::path& path);
    void openAgain(const std::filesystem::path& path);
    void tellAway(const std::filesystem::path& path);
    void adopt(const std::shared_ptr<OpenLibrary>& library, const Answer& answer);

    CoreServices& core_;
    GoogleServices& google_;
    std::shared_ptr<OpenLibrary> open_;
    bool isAway_ = false;
    QTimer looking_; ///< while the library is away
    Subscription changes_;
    TaskRunner tasks_; ///< last: its work uses the rest
};

} // namespace quorvane
