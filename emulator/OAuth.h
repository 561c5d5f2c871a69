#pragma once

#include "emulator/Answer.h"
#include "emulator/Call.h"
#include "emulator/Tokens.h"

namespace quorvane::emulator {

/// Google's OAuth 2.0 endpoints for installed apps: RFC 6749 with PKCE (RFC 7636), and RFC 7009.
/// The person's consent is given or denied at once. Not shared between threads.
class OAuth {
  public:
    explicit OAuth(Tokens& tokens) : tokens_(tokens) {}

    Answer authorize(const Call& call, const Behaviour& behaviour, Date now);
    Answer exchange(const Call& call, const Behaviour& behaviour, Date now);
    Answer revoke(const Call& call);
    Answer userInfo(const Call& call, Date now) const;

    /// A pair as a sign-in would have brought it; any client may use it.
    TokenPair issue(const Scopes& scopes, const Behaviour& behaviour, Date now);

  private:
    struct Code {
        QString clientID, redirectURI, challenge;
        Tokens::Consent consent;
        bool isOffline = false;
        Date expiry;
    };

    Answer redeemCode(const QUrlQuery& form, const Behaviour& behaviour, Date now);
    Answer refresh(const QUrlQuery& form, const Behaviour& behaviour, Date now);

    Tokens& tokens_;
    std::map<QString, Code> codes_;
};

} // namespace quorvane::emulator
