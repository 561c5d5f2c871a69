#include "platform/bundle/SmartAlbums.h"

#include "library/LocalIdentifier.h"
#include "library/PhotoLibrary.h"

#include <QUuid>

namespace quorvane {

QString SmartAlbum::identifier() const {
    static const QUuid space(QLatin1String("7f4e2a90-53bd-4d0a-8c16-e2b9074d5a63"));
    return QUuid::createUuidV5(space, QByteArray::number(subtype))
               .toString(QUuid::WithoutBraces)
               .toUpper() +
           localIdentifier::albumTail;
}

std::span<const SmartAlbum> smartAlbums() {
    static constexpr SmartAlbum albums[] = {
        {collectionSubtype::smartAlbumUserLibrary, "Arşiv", "1"},
        {203, "Favoriler", "a.ZFAVORITE = 1"},
        {202, "Videolar", "a.ZKIND = 1"},
        {213, "Live Photo'lar", "a.ZKIND = 0 AND a.ZKINDSUBTYPE = 2"},
        {201, "Panoramalar", "a.ZKIND = 0 AND a.ZKINDSUBTYPE = 1"},
        {208, "Ağır Çekim", "a.ZKIND = 1 AND a.ZKINDSUBTYPE = 101"},
        {204, "Hızlandırılmış", "a.ZKIND = 1 AND a.ZKINDSUBTYPE = 102"},
        {211, "Ekran Görüntüleri", "a.ZKIND = 0 AND a.ZKINDSUBTYPE = 10"},
        {collectionSubtype::smartAlbumAllHidden, "Gizli", "a.ZHIDDEN = 1"},
    };
    return albums;
}

} // namespace quorvane
