#include "emulator/EmulatorTypes.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

QString nameOf(RequestKind kind) {
    switch (kind) {
    case RequestKind::auth:
        return u"auth"_s;
    case RequestKind::token:
        return u"token"_s;
    case RequestKind::revoke:
        return u"revoke"_s;
    case RequestKind::userinfo:
        return u"userinfo"_s;
    case RequestKind::upload:
        return u"upload"_s;
    case RequestKind::batchCreate:
        return u"batchCreate"_s;
    case RequestKind::batchGet:
        return u"batchGet"_s;
    case RequestKind::albumsList:
        return u"albumsList"_s;
    case RequestKind::albumsCreate:
        return u"albumsCreate"_s;
    case RequestKind::albumsGet:
        return u"albumsGet"_s;
    case RequestKind::albumsAdd:
        return u"albumsAdd"_s;
    case RequestKind::sharedAlbums:
        return u"sharedAlbums"_s;
    case RequestKind::report:
        return u"report"_s;
    case RequestKind::other:
        break;
    }
    return u"other"_s;
}

std::optional<RequestKind> requestKindFrom(const QString& name) {
    const auto found = std::ranges::find(allRequestKinds, name, nameOf);
    return found == allRequestKinds.end() ? std::nullopt : std::optional(*found);
}

bool isLibraryRequest(RequestKind kind) {
    switch (kind) {
    case RequestKind::upload:
    case RequestKind::batchCreate:
    case RequestKind::batchGet:
    case RequestKind::albumsList:
    case RequestKind::albumsCreate:
    case RequestKind::albumsGet:
    case RequestKind::albumsAdd:
    case RequestKind::sharedAlbums:
        return true;
    default:
        return false;
    }
}

QByteArray RecordedRequest::header(QByteArrayView name) const {
    for (const auto& [key, value] : headers)
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    return {};
}

} // namespace quorvane::emulator
