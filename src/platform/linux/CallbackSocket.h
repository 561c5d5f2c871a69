#pragma once

#include "foundation/File.h"

#include <QString>

#include <filesystem>
#include <optional>

namespace quorvane {

/// Where the waiting sign-in of this user receives its callback: a Unix socket (mode 0600) in a
/// folder of ours (mode 0700), open to the same user's processes only. There is one per user: a
/// new listener ends the one before it, in whichever process that waits.
class CallbackSocket {
  public:
    /// Throws `FileError` when the socket cannot be made.
    explicit CallbackSocket(std::filesystem::path path);
    ~CallbackSocket();
    CallbackSocket(const CallbackSocket&) = delete;
    CallbackSocket& operator=(const CallbackSocket&) = delete;

    /// Readable when somebody waits to be received.
    int descriptor() const { return listener_.get(); }

    /// What somebody came with.
    struct Visit {
        bool overtakes = false; ///< another sign-in begins; the socket is its own from now on
        QString url;
        FileDescriptor connection;

        /// Tells the visitor whether the URL was the awaited one.
        void answer(bool taken) const;
    };

    /// Receives one visitor, or none when it was a stranger or stayed silent for a second.
    /// Returns at once when `wake` becomes readable.
    std::optional<Visit> receive(int wake);

    /// Hands `url` to the sign-in that listens at `path`. False when none does, or when it was
    /// waiting for another URL.
    static bool handOver(const std::filesystem::path& path, const QString& url);

  private:
    void giveUpPath();

    std::filesystem::path path_; ///< empty once it is no longer ours
    FileDescriptor listener_;
};

} // namespace quorvane
