#include "platform/folder/FolderTrash.h"

#include "library/FileExport.h"
#include "library/PhotoLibrary.h"

#include <QFile>

#include <cerrno>
#include <optional>
#include <ranges>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

struct Move {
    std::filesystem::path from;
    std::filesystem::path inTrash;
};

/// The place in the Trash; none when the desktop refused.
std::optional<std::filesystem::path> trash(const std::filesystem::path& file) {
    const QString name = QFile::decodeName(file.c_str());
    if (QFile::encodeName(name) != file.c_str())
        return std::nullopt; // Qt would look for another file
    QString inTrash;
    if (!QFile::moveToTrash(name, &inTrash))
        return std::nullopt;
    return pathFrom(inTrash);
}

bool takeBack(const Move& move) {
    struct stat status {};
    if (::lstat(move.from.c_str(), &status) == 0 || errno != ENOENT)
        return false; // something else has the name now
    if (::rename(move.inTrash.c_str(), move.from.c_str()) != 0)
        return false;
    const std::filesystem::path information = move.inTrash.parent_path().parent_path() / "info" /
                                              (move.inTrash.filename().native() + ".trashinfo");
    ::unlink(information.c_str());
    return true;
}

} // namespace

void moveToTrash(const std::filesystem::path& root,
                 const std::vector<std::filesystem::path>& files) {
    for (const std::filesystem::path& file : files)
        openOriginalBeneath(root, file); // each is there and really in the library
    std::vector<Move> moves;
    for (const std::filesystem::path& file : files) {
        const std::filesystem::path from = root / file;
        if (const auto inTrash = trash(from)) {
            moves.push_back({from, *inTrash});
            continue;
        }
        QString text = QStringLiteral("Çöp Kutusu'na taşınamadı: %1").arg(pathText(from));
        for (const Move& move : moves | std::views::reverse)
            if (!takeBack(move))
                text += QStringLiteral("; geri alınamadı, Çöp Kutusu'nda duruyor: %1")
                            .arg(pathText(move.from));
        throw PhotoLibraryError(text);
    }
}

} // namespace quorvane
