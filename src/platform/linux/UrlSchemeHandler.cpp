#include "platform/linux/UrlSchemeHandler.h"

#include "foundation/File.h"
#include "platform/linux/DesktopEntry.h"

#include <QByteArrayList>

#include <cerrno>

namespace quorvane {

namespace {

constexpr std::int64_t largestFile = 1 << 20;
const QByteArray entryName = "quorvane-url-handler.desktop";

QByteArray desktopEntry(const QByteArray& type, const DesktopEnvironment& environment) {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Quorvane\n"
           "NoDisplay=true\n"
           "Terminal=false\n"
           "StartupNotify=false\n"
           "Exec=" +
           desktopExecArgument(environment.programFolder / "quorvane-cli") +
           " handle-url %u\n"
           "MimeType=" +
           type + ";\n";
}

/// The file's bytes; none when there is no such file.
QByteArray existing(const std::filesystem::path& file) {
    try {
        return readWholeFile(file, largestFile);
    } catch (const FileError& error) {
        if (error.errorNumber() == ENOENT)
            return {};
        throw;
    }
}

/// `list` with `type` set to our entry in its section of defaults, and all else as it was.
QByteArray withDefault(const QByteArray& list, const QByteArray& type) {
    const QByteArray section = "[Default Applications]";
    const QByteArray wanted = type + '=' + entryName;
    QByteArrayList lines = list.split('\n');
    bool inSection = false;
    qsizetype insertAt = -1;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QByteArray line = lines[i].trimmed();
        if (line.startsWith('['))
            inSection = line == section;
        if (inSection && line == section && insertAt < 0)
            insertAt = i + 1;
        if (inSection && line.startsWith(type + '=')) {
            lines[i] = wanted;
            return lines.join('\n');
        }
    }
    if (insertAt >= 0) {
        lines.insert(insertAt, wanted);
        return lines.join('\n');
    }
    return list + (list.isEmpty() || list.endsWith('\n') ? "" : "\n") + section + '\n' + wanted +
           '\n';
}

void writeWhenDifferent(const std::filesystem::path& file, const QByteArray& before,
                        const QByteArray& after) {
    if (before == after)
        return;
    std::error_code ignored;
    std::filesystem::create_directories(file.parent_path(), ignored);
    // A list kept elsewhere and linked here stays a link.
    const std::filesystem::path target = std::filesystem::weakly_canonical(file, ignored);
    replaceFile(target.empty() ? file : target, after, 0644);
}

} // namespace

void installUrlSchemeHandler(const QString& scheme, const DesktopEnvironment& environment) {
    const QByteArray type = "x-scheme-handler/" + scheme.toUtf8();
    const auto entry = environment.dataHome / "applications" / entryName.toStdString();
    writeWhenDifferent(entry, existing(entry), desktopEntry(type, environment));
    const auto defaults = environment.configHome / "mimeapps.list";
    const QByteArray list = existing(defaults);
    writeWhenDifferent(defaults, list, withDefault(list, type));
}

} // namespace quorvane
