#include "library/StagedName.h"

#include "foundation/File.h"

namespace quorvane {

namespace {

/// 255 bytes are a file system's limit; a rewrite's sibling is called ".<name>.part".
constexpr qsizetype longestName = 255 - 6;
constexpr qsizetype longestExtension = 16;

qsizetype bytesOf(const QString& text) {
    return text.toUtf8().size();
}

} // namespace

QString safeId(const QString& localIdentifier) {
    return QString(localIdentifier).replace(u'/', u'_');
}

std::filesystem::path stagedFileName(const QString& localIdentifier,
                                     const QString& resourceFilename) {
    QString name = safeId(localIdentifier) + u'_' + resourceFilename;
    name.replace(u'/', u'_').replace(QChar::Null, u'_');
    const qsizetype dot = name.lastIndexOf(u'.');
    QString extension = dot < 0 ? QString() : name.mid(dot);
    if (bytesOf(extension) > longestExtension)
        extension.clear();
    name.chop(extension.size());
    while (!name.isEmpty() && bytesOf(name) + bytesOf(extension) > longestName)
        name.chop(name.back().isLowSurrogate() ? 2 : 1);
    return pathFrom(name + extension);
}

} // namespace quorvane
