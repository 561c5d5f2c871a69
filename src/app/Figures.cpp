#include "app/Figures.h"

namespace quorvane {

std::vector<Figure> figuresOf(const RemainderCounts& behind) {
    return {{QStringLiteral("Düzenlemesi yüklenmeyen"), "edits", behind.edits},
            {QStringLiteral("Filmi yüklenmeyen Live"), "liveMovies", behind.movies},
            {QStringLiteral("RAW eşi yüklenmeyen"), "raws", behind.raws},
            {QStringLiteral("Özgün hali yüklenmeyen"), "originals", behind.originals},
            {QStringLiteral("Aynı içerikten kopya"), "duplicates", behind.duplicates}};
}

std::vector<Figure> figuresOf(const LeftOut& leftOut) {
    return {{QStringLiteral("Okunamadığı için atlanan"), "unreadable", leftOut.unreadable},
            {QStringLiteral("Yazıldığı için atlanan"), "inUse", leftOut.inUse},
            {QStringLiteral("Gizli veya bağ, atlanan"), "hidden", leftOut.hidden},
            {QStringLiteral("Resim veya video olmayan"), "otherFiles", leftOut.otherFiles}};
}

} // namespace quorvane
