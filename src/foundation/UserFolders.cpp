#include "foundation/UserFolders.h"

#include "foundation/Error.h"

#include <QDir>
#include <QStandardPaths>

namespace quorvane {

std::filesystem::path UserFolders::requestCount(const QString& clientID) const {
    QString project = clientID.section(u'-', 0, 0);
    project.removeIf([](QChar character) { return !character.isLetterOrNumber(); });
    return applicationSupport() / ("google-requests-" + project.toStdString());
}

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
