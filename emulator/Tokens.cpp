#include "emulator/Tokens.h"

#include "foundation/Crypto.h"

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

const QString clientKey = u"clientId"_s;
const QString scopeKey = u"scope"_s;
const QString personKey = u"userId"_s;
const QString emailKey = u"email"_s;
const QString expiryKey = u"expiry"_s;
const QString grantKey = u"refreshToken"_s;
const QString grantsKey = u"grants"_s;
const QString accessKey = u"access"_s;

QJsonObject toJson(const Tokens::Consent& consent) {
    return {{scopeKey, textOf(consent.scopes)},
            {personKey, consent.person.id},
            {emailKey, consent.person.email}};
}

Tokens::Consent consentFrom(const QJsonObject& object) {
    const Person unnamed; // of a state file from before there were several
    return {.person = {.id = object.value(personKey).toString(unnamed.id),
                       .email = object.value(emailKey).toString(unnamed.email)},
            .scopes = scopesFrom(object.value(scopeKey).toString())};
}

} // namespace

Scopes scopesFrom(const QString& text) {
    const QStringList list = text.split(u' ', Qt::SkipEmptyParts);
    return Scopes(list.begin(), list.end());
}

QString textOf(const Scopes& scopes) {
    QStringList list(scopes.begin(), scopes.end());
    list.sort();
    return list.join(u' ');
}

const Scopes& allScopes() {
    static const Scopes scopes{appendScope, readScope, readAppDataScope, emailScope};
    return scopes;
}

QString opaqueText(int count) {
    return QString::fromLatin1(secureRandomBytes(count).toBase64(QByteArray::Base64UrlEncoding |
                                                                 QByteArray::OmitTrailingEquals));
}

QString Tokens::addGrant(const Grant& grant) {
    QString token = u"1//0"_s + opaqueText(48);
    grants_.insert_or_assign(token, grant);
    return token;
}

QString Tokens::addAccess(const Access& access) {
    QString token = u"ya29.a0"_s + opaqueText(48);
    access_.insert_or_assign(token, access);
    return token;
}

const Tokens::Grant* Tokens::grant(const QString& refreshToken) const {
    const auto found = grants_.find(refreshToken);
    return found == grants_.end() ? nullptr : &found->second;
}

const Tokens::Access* Tokens::access(const QString& accessToken, Date now) const {
    const auto found = access_.find(accessToken);
    return found == access_.end() || found->second.expiry <= now ? nullptr : &found->second;
}

bool Tokens::revoke(const QString& token) {
    QString grant = token;
    if (const auto found = access_.find(token); found != access_.end()) {
        grant = found->second.refreshToken;
        access_.erase(found);
    } else if (!grants_.contains(token)) {
        return false;
    }
    if (!grant.isEmpty()) {
        grants_.erase(grant);
        std::erase_if(access_,
                      [&](const auto& entry) { return entry.second.refreshToken == grant; });
    }
    return true;
}

void Tokens::revokeAll() {
    grants_.clear();
    access_.clear();
}

void Tokens::expireAccess() {
    for (auto& [token, access] : access_)
        access.expiry = Date{};
}

QJsonObject Tokens::toJson() const {
    QJsonObject grants;
    for (const auto& [token, grant] : grants_) {
        QJsonObject entry = emulator::toJson(grant.consent);
        entry.insert(clientKey, grant.clientID);
        if (grant.expiry)
            entry.insert(expiryKey, unixSeconds(*grant.expiry));
        grants.insert(token, entry);
    }
    QJsonObject access;
    for (const auto& [token, held] : access_) {
        QJsonObject entry = emulator::toJson(held.consent);
        entry.insert(expiryKey, unixSeconds(held.expiry));
        entry.insert(grantKey, held.refreshToken);
        access.insert(token, entry);
    }
    return {{grantsKey, grants}, {accessKey, access}};
}

Tokens Tokens::fromJson(const QJsonObject& object) {
    Tokens tokens;
    const QJsonObject grants = object.value(grantsKey).toObject();
    for (auto it = grants.begin(); it != grants.end(); ++it) {
        const QJsonObject entry = it.value().toObject();
        tokens.grants_.insert_or_assign(
            it.key(),
            Grant{entry.value(clientKey).toString(), consentFrom(entry),
                  entry.contains(expiryKey) ? dateFromUnixSeconds(entry.value(expiryKey).toDouble())
                                            : std::nullopt});
    }
    const QJsonObject access = object.value(accessKey).toObject();
    for (auto it = access.begin(); it != access.end(); ++it) {
        const QJsonObject entry = it.value().toObject();
        const Date expiry = dateFromUnixSeconds(entry.value(expiryKey).toDouble()).value_or(Date{});
        tokens.access_.insert_or_assign(
            it.key(), Access{expiry, consentFrom(entry), entry.value(grantKey).toString()});
    }
    return tokens;
}

} // namespace quorvane::emulator
