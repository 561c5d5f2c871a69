#include "google/MimeTypes.h"

#include "foundation/File.h"

#include <QHash>

namespace quorvane {

QByteArray mimeType(const std::filesystem::path& file) {
    static const QHash<QString, QByteArray> types{
        {QStringLiteral(".jpg"), "image/jpeg"},      {QStringLiteral(".jpeg"), "image/jpeg"},
        {QStringLiteral(".heic"), "image/heic"},     {QStringLiteral(".heif"), "image/heif"},
        {QStringLiteral(".png"), "image/png"},       {QStringLiteral(".gif"), "image/gif"},
        {QStringLiteral(".webp"), "image/webp"},     {QStringLiteral(".mp4"), "video/mp4"},
        {QStringLiteral(".mov"), "video/quicktime"}, {QStringLiteral(".m4v"), "video/x-m4v"},
    };
    return types.value(pathText(file.extension()).toLower(), "application/octet-stream");
}

} // namespace quorvane
