#pragma once

#include "emulator/Disturbance.h"
#include "emulator/EmulatorTypes.h"
#include "foundation/Clock.h"

#include <QJsonObject>

#include <functional>
#include <memory>

namespace quorvane {

namespace emulator {
class HttpServer;
class Service;
} // namespace emulator

/// A local Google Photos service with one account, spoken to over HTTP on 127.0.0.1. It follows
/// Google's documentation of OAuth 2.0 for installed apps and of the Photos Library API, and
/// refuses what Google refuses. Every operation may be called from any thread, before and after
/// `start`.
class GoogleEmulator {
  public:
    /// Takes up the state file, if there is one. Throws `Error` when it cannot be read.
    explicit GoogleEmulator(emulator::EmulatorOptions options = {});
    /// Expiries follow `clock`, which must outlive the service; delays are always real.
    GoogleEmulator(emulator::EmulatorOptions options, const Clock& clock);
    ~GoogleEmulator();

    /// Serves on threads of its own. After `stop` it may be started again, on the same port and
    /// with all it knew. Throws `Error` when the port is taken.
    void start();
    /// Breaks off every connection. May be called twice.
    void stop();

    int port() const;
    QString baseURL() const; ///< "http://127.0.0.1:PORT"

    /// Changes what it does from the next request on.
    void change(const std::function<void(emulator::Behaviour&)>& edit);
    void addDisturbance(const emulator::Disturbance& fault);
    void clearDisturbances();

    /// Tokens as a sign-in would have brought them, good for any client; by default for all four
    /// scopes. The scopes are separated by spaces.
    emulator::TokenPair issueTokens(const QString& scopes = {});
    /// Every access token is refused from now on; refresh tokens stay good.
    void expireAccessTokens();
    /// Every token is refused from now on, as when the person withdraws the access.
    void revokeTokens();

    /// Adds an album with `itemCount` items the library here does not know; returns its id.
    QString addAlbum(const QString& title, std::int64_t itemCount = 0, bool isShared = false,
                     bool isAppCreated = true);

    /// What was asked and answered, in order of the answers; with a kind, only of that kind.
    std::vector<emulator::RecordedRequest> requests() const;
    std::vector<emulator::RecordedRequest> requests(emulator::RequestKind kind) const;
    /// Requests of a kind that have arrived so far, recorded or not.
    int requestCount(emulator::RequestKind kind) const;
    /// Waits until so many have arrived, even if they are not answered yet. False after `limit`.
    bool waitForRequests(emulator::RequestKind kind, int count,
                         std::chrono::milliseconds limit = std::chrono::seconds(10)) const;
    void clearRequests();

    std::vector<emulator::StoredMediaItem> mediaItems() const; ///< in order of creation
    std::vector<emulator::StoredAlbum> albums() const;         ///< in order of creation
    /// As when the person deletes it in Google Photos. An unknown one is left alone.
    void deleteMediaItem(const QString& id);
    void deleteAlbum(const QString& id);

    /// {"requests": {kind: count}, "uploadedBytes", "mediaItems": [...], "albums": [...]}
    QJsonObject report() const;

  private:
    emulator::EmulatorOptions options_;
    std::unique_ptr<emulator::Service> service_;
    std::unique_ptr<emulator::HttpServer> server_; ///< last: its threads use the service
};

} // namespace quorvane
