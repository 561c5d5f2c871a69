#include "emulator/Account.h"

#include "emulator/AlbumAdditions.h"
#include "emulator/JsonBody.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

Refusal insufficientScopes() {
    return Refusal(apiError(403, u"Request had insufficient authentication scopes."_s,
                            u"ACCESS_TOKEN_SCOPE_INSUFFICIENT"_s));
}

} // namespace

Answer Account::answer(const Call& call, const Behaviour& behaviour, Date now) try {
    if (isLibraryRequest(call.request.kind))
        quota_.spend(behaviour, now);
    switch (call.request.kind) {
    case RequestKind::auth:
        return oauth_.authorize(call, behaviour, now);
    case RequestKind::token:
        return oauth_.exchange(call, behaviour, now);
    case RequestKind::revoke:
        return oauth_.revoke(call);
    case RequestKind::userinfo:
        return oauth_.userInfo(call, now);
    case RequestKind::upload:
        requireScope(call, {appendScope}, now);
        return uploads_.receive(call, behaviour, now);
    case RequestKind::batchCreate:
        requireScope(call, {appendScope}, now);
        return mediaItems_.batchCreate(call, behaviour, now);
    case RequestKind::batchGet:
        requireReading(call, behaviour, now);
        return mediaItems_.batchGet(call);
    case RequestKind::albumsCreate:
        requireScope(call, {appendScope}, now);
        return albums_.create(call);
    case RequestKind::albumsAdd:
        requireScope(call, {appendScope}, now);
        return addToAlbum(call, albums_, mediaItems_, behaviour);
    case RequestKind::albumsGet:
        requireReading(call, behaviour, now);
        return albums_.get(call);
    case RequestKind::albumsList:
    case RequestKind::sharedAlbums:
        requireReading(call, behaviour, now);
        return albums_.list(call, call.request.kind == RequestKind::sharedAlbums);
    case RequestKind::report:
    case RequestKind::other:
        break;
    }
    return htmlAnswer("<!DOCTYPE html><title>Error 404 (Not Found)</title>", 404);
} catch (const Refusal& refusal) {
    return refusal.answer;
}

void Account::requireReading(const Call& call, const Behaviour& behaviour, Date now) const {
    requireScope(call, {readScope, readAppDataScope}, now);
    const bool isShared = call.request.kind == RequestKind::sharedAlbums;
    if (behaviour.listingForbidden || (isShared && behaviour.sharedListingForbidden))
        throw insufficientScopes();
}

void Account::requireScope(const Call& call, const QStringList& scopes, Date now) const {
    const Tokens::Access* access = tokens_.access(call.bearer(), now);
    if (!access)
        throw Refusal(apiError(401,
                               u"Request had invalid authentication credentials. Expected OAuth 2 "
                               "access token, login cookie or other valid authentication "
                               "credential."_s));
    if (std::ranges::none_of(
            scopes, [&](const QString& scope) { return access->consent.scopes.contains(scope); }))
        throw insufficientScopes();
}

QJsonObject Account::toJson() const {
    return {{u"tokens"_s, tokens_.toJson()},
            {u"uploads"_s, uploads_.toJson()},
            {u"albums"_s, albums_.toJson()},
            {u"mediaItems"_s, mediaItems_.toJson()}};
}

void Account::restore(const QJsonObject& object) {
    tokens_ = Tokens::fromJson(object[u"tokens"_s].toObject());
    uploads_ = Uploads::fromJson(object[u"uploads"_s].toObject());
    albums_ = Albums::fromJson(object[u"albums"_s].toArray());
    mediaItems_.restore(object[u"mediaItems"_s].toArray());
}

bool changesAccount(RequestKind kind) {
    return kind == RequestKind::token || kind == RequestKind::revoke ||
           kind == RequestKind::batchCreate || kind == RequestKind::albumsCreate ||
           kind == RequestKind::albumsAdd;
}

} // namespace quorvane::emulator
