#pragma once

#include "emulator/EmulatorTypes.h"
#include "foundation/Date.h"

#include <QJsonObject>
#include <QSet>

#include <map>

namespace quorvane::emulator {

/// Scopes by their full identifiers, as a client asks for them.
using Scopes = QSet<QString>;

/// Space-separated scopes, and back in alphabetical order.
Scopes scopesFrom(const QString& text);
QString textOf(const Scopes& scopes);

/// The four scopes that the product asks for.
const Scopes& allScopes();

inline const QString appendScope =
    QStringLiteral("https://www.googleapis.com/auth/photoslibrary.appendonly");
inline const QString readScope =
    QStringLiteral("https://www.googleapis.com/auth/photoslibrary.readonly");
inline const QString readAppDataScope =
    QStringLiteral("https://www.googleapis.com/auth/photoslibrary.readonly.appcreateddata");
inline const QString emailScope = QStringLiteral("https://www.googleapis.com/auth/userinfo.email");

/// `count` random bytes as base64url text, as Google's opaque values look.
QString opaqueText(int count);

/// The refresh and access tokens in force. Not shared between threads.
class Tokens {
  public:
    /// Who agreed to what.
    struct Consent {
        Person person;
        Scopes scopes;
    };
    struct Access {
        Date expiry;
        Consent consent;
        QString refreshToken; ///< the grant it belongs to; empty without offline access
    };
    struct Grant {
        QString clientID; ///< empty: any client
        Consent consent;
        std::optional<Date> expiry = {};
    };

    QString addGrant(const Grant& grant);
    QString addAccess(const Access& access);

    const Grant* grant(const QString& refreshToken) const;
    /// None when unknown or expired at `now`.
    const Access* access(const QString& accessToken, Date now) const;

    /// Ends the grant that an access or refresh token belongs to. False for an unknown token.
    bool revoke(const QString& token);
    void revokeAll();
    void expireAccess();

    QJsonObject toJson() const;
    static Tokens fromJson(const QJsonObject& object);

  private:
    std::map<QString, Grant> grants_;
    std::map<QString, Access> access_;
};

} // namespace quorvane::emulator
