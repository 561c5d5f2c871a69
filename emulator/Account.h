#pragma once

#include "emulator/Albums.h"
#include "emulator/MediaItems.h"
#include "emulator/OAuth.h"
#include "emulator/Quota.h"
#include "emulator/Tokens.h"
#include "emulator/Uploads.h"

namespace quorvane::emulator {

/// The one Google account of the service: who may ask, and what is answered. Not shared between
/// threads; references into it stay good for its life.
class Account {
  public:
    Account() = default;
    Account(const Account&) = delete;
    Account& operator=(const Account&) = delete;

    Answer answer(const Call& call, const Behaviour& behaviour, Date now);

    Tokens& tokens() { return tokens_; }
    OAuth& oauth() { return oauth_; }
    Uploads& uploads() { return uploads_; }
    Albums& albums() { return albums_; }
    const Albums& albums() const { return albums_; }
    MediaItems& mediaItems() { return mediaItems_; }
    const MediaItems& mediaItems() const { return mediaItems_; }

    QJsonObject toJson() const;
    void restore(const QJsonObject& object);

  private:
    /// Throws `Refusal` unless the call carries a token with one of `scopes`.
    void requireScope(const Call& call, const QStringList& scopes, Date now) const;
    void requireReading(const Call& call, const Behaviour& behaviour, Date now) const;

    Quota quota_;
    Tokens tokens_;
    Uploads uploads_;
    Albums albums_;
    OAuth oauth_{tokens_};
    MediaItems mediaItems_{uploads_, albums_};
};

/// Whether requests of that kind change what a restart must still know.
bool changesAccount(RequestKind kind);

} // namespace quorvane::emulator
