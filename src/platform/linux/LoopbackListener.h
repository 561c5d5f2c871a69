#pragma once

#include "foundation/File.h"

#include <QUrl>

#include <deque>
#include <optional>

namespace quorvane {

/// Where the browser of this computer brings a sign-in's callback: a page at a free port of
/// 127.0.0.1 (RFC 8252, section 7.3), for as long as it lives. A request without the page's path
/// and the sign-in's state, from whatever program of whatever user, is told that there is no such
/// page (404) and changes nothing. One thread; nothing waits.
class LoopbackListener {
  public:
    /// Throws `Error` when no port can be had.
    explicit LoopbackListener(QString state);

    /// "http://127.0.0.1:PORT/oauth2redirect"
    QString redirectURI() const;

    /// Whether `url` is this sign-in's callback.
    bool isCallback(const QUrl& url) const;

    /// Readable when there is something to receive.
    int descriptor() const { return events_.get(); }

    /// Receives and answers what has come. The callback, once it is among it.
    std::optional<QUrl> receive();

  private:
    /// A browser opens more connections than it uses, so each is read as it comes.
    struct Visitor {
        FileDescriptor connection;
        QByteArray head;
    };

    void admit();
    std::optional<QUrl> hear(Visitor& visitor);
    std::optional<QUrl> answer(const Visitor& visitor) const;

    const QString state_;
    FileDescriptor listener_, events_;
    int port_ = 0;
    std::deque<Visitor> visitors_; ///< oldest first
};

/// The target of a GET request from its head (RFC 9112, section 3), as a URL at `origin`; none for
/// anything else.
std::optional<QUrl> requestedURL(const QByteArray& head, const QString& origin);

} // namespace quorvane
