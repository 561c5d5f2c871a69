#include "foundation/UserFolders.h"

#include "foundation/Error.h"

#include <QDir>
#include <QStandardPaths>

namespace quorvane {

UserFolders UserFolders::ofCurrentUser() {
    const QString home = QDir::homePath();
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    if (home.isEmpty() || pictures.isEmpty())
        throw Error(QStringLiteral("Kullanıcının ev veya Resimler klasörü bulunamadı"));
    UserFolders folders;
    folders.home = home.toStdU16String();
    folders.pictures = pictures.toStdU16String();
    return folders;
}

} // namespace quorvane
