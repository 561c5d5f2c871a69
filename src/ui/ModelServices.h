#pragma once

#include "google/GoogleAlbumManager.h"
#include "google/GoogleOAuthManager.h"
#include "ui/Desktop.h"
#include "ui/LibrarySession.h"
#include "ui/SessionCheckModel.h"
#include "ui/TrashQuestion.h"

namespace quorvane {

/// What the state model works with. Not owned; they outlive the model.
struct ModelServices {
    GoogleOAuthManager& oauth;
    GoogleAlbumManager& albums;
    TransferActivityTracker& tracker;
    Preferences& preferences;
    Log& log;
    Publisher<LogEntry>& logPublisher;
    Console& console;
    Clock& clock;
    Desktop& desktop;
    TrashQuestion& trash;
    /// Held for the length of a run; throws `Error` while another process runs one.
    std::function<std::shared_ptr<void>()> acquireRunLock;
    std::filesystem::path logFile;
    /// Somebody signed in or out: the open library's state may be another's now.
    std::function<void()> accountDidChange = [] {};
    /// Gives a pasted callback to the sign-in that waits; false when it is not the awaited one.
    /// Blocks for moments.
    std::function<bool(const QString& url)> handOverURL = [](const QString&) { return false; };
    /// Finds out whether the library is where it was, and opens it when it has come back.
    std::function<void()> lookForLibrary = [] {};
    SessionCheckModel::Check checkSession = [](const std::stop_token&) {
        return std::vector<CheckedThing>();
    };
    /// The page about a run: HTML, UTF-8. Blocks; any thread.
    std::function<QByteArray(const FinishedRun&)> reportPage = [](const FinishedRun&) {
        return QByteArray();
    };
};

} // namespace quorvane
