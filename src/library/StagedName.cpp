#include "library/StagedName.h"

#include "foundation/File.h"

namespace quorvane {

namespace {

/// 255 bytes are a file system's limit; a rewrite's sibling is called ".<name>.part".
constexpr qsizetype longestName = 255 - 6;
constexpr qsizetype longestExtension = 16;

bool isInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; // RFC 3629, section 3
}

/// The longest beginning of the UTF-8 text that has at most so many bytes and no part of a
/// character.
QByteArray shortened(QByteArray text, qsizetype most) {
    if (text.size() <= most)
        return text;
    while (most > 0 && isInsideCharacter(text[most]))
        --most;
    text.truncate(most);
    return text;
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
    QByteArray extension = dot < 0 ? QByteArray() : name.mid(dot).toUtf8();
    if (extension.size() > longestExtension)
        extension.clear();
    else if (dot >= 0)
        name.truncate(dot);
    const QByteArray stem = shortened(name.toUtf8(), longestName - extension.size());
    return (stem + extension).toStdString();
}

} // namespace quorvane
