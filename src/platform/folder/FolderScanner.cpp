#include "platform/folder/FolderScanner.h"

#include "foundation/File.h"
#include "foundation/MediaKinds.h"
#include "platform/folder/FolderIdentity.h"
#include "platform/folder/OpenForWriting.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>
#include <unordered_map>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::size_t otherFilesNamed = 20;
constexpr std::string_view photosBundleExtension = ".photoslibrary";

struct CloseDirectory {
    void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

class Scanner {
  public:
    Scanner(const std::filesystem::path& root, const KnownVersion& isKnown,
            const SkipHandler& skipped, const std::stop_token& stop)
        : root_(root), isKnown_(isKnown), skipped_(skipped), stop_(stop) {}

    FolderScan run() {
        addFolder({});
        for (std::size_t position = 0; position < found_.folders.size(); ++position)
            scan(position);
        return std::move(found_);
    }

  private:
    std::size_t addFolder(const std::string& path) {
        found_.folders.push_back(
            {path, 0, folderAlbumIdentifier(path), folderListIdentifier(path), {}, {}, false});
        return found_.folders.size() - 1;
    }

    void scan(std::size_t position) {
        const std::string path = found_.folders[position].path;
        const Directory directory = open(path);
        if (!directory)
            return;
        struct stat status {};
        ::fstat(::dirfd(directory.get()), &status);
        found_.folders[position].modified = FileVersion::of(status).modified;

        std::vector<std::string> subfolders;
        errno = 0;
        // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody else reads this stream
        while (const dirent* entry = ::readdir(directory.get()))
            visit(directory.get(), *entry, position, subfolders);
        if (errno != 0)
            skipUnreadable(path, errno);
        std::ranges::sort(subfolders);
        for (const std::string& subfolder : subfolders) {
            const std::size_t added = addFolder(subfolder);
            found_.folders[position].folders.push_back(added);
        }
    }

    Directory open(const std::string& path) {
        // The library's own name may be a link; no folder inside it may.
        const int follow = path.empty() ? 0 : O_NOFOLLOW;
        const int fd = ::open((root_ / path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | follow);
        if (fd >= 0)
            return Directory(::fdopendir(fd));
        if (path.empty())
            throw PhotoLibraryError::away(QStringLiteral("Resim klasörü okunamıyor: %1 (%2)")
                                              .arg(pathText(root_), errorNumberText(errno)));
        skipUnreadable(path, errno);
        return nullptr;
    }

    void skipUnreadable(const std::string& path, int error) {
        ++found_.leftOut.unreadable;
        skipped_(path, errorNumberText(error));
    }

    void skipHidden(const std::string& path, const QString& reason) {
        ++found_.leftOut.hidden;
        skipped_(path, reason);
    }

    void visit(DIR* directory, const dirent& entry, std::size_t folder,
               std::vector<std::string>& subfolders) {
        if (stop_.stop_requested())
            throw Cancelled();
        const std::string name = entry.d_name;
        if (name == "." || name == "..")
            return;
        // "._" is the resource fork of a file, not a file of its own.
        const bool isMedia =
            mediaTypeOfName(name) != AssetMediaType::unknown && !name.starts_with("._");
        const std::string& parent = found_.folders[folder].path;
        const std::string path = parent.empty() ? name : parent + "/" + name;
        if (entry.d_type == DT_REG && !isMedia)
            return visitOther(path);
        struct stat status {};
        if (::fstatat(::dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            skipUnreadable(path, errno);
        else if (S_ISDIR(status.st_mode))
            visitFolder(path, name, subfolders);
        else if (S_ISLNK(status.st_mode))
            visitLink(path, isMedia);
        else if (isMedia)
            visitFile(directory, path, name, status, folder);
        else if (S_ISREG(status.st_mode))
            visitOther(path);
        errno = 0;
    }

    void visitOther(const std::string& path) {
        ++found_.leftOut.otherFiles;
        if (found_.otherFiles.size() < otherFilesNamed)
            found_.otherFiles.push_back(path);
    }

    void visitFolder(const std::string& path, const std::string& name,
                     std::vector<std::string>& subfolders) const {
        if (isStagingFolderName(name))
            return;
        if (name.starts_with('.'))
            skipped_(path, QStringLiteral("gizli klasör"));
        else if (name.ends_with(photosBundleExtension))
            skipped_(path, QStringLiteral("Fotoğraflar arşivi; ayrıca seçilmelidir"));
        else
            subfolders.push_back(path);
    }

    void visitLink(const std::string& path, bool isMedia) {
        std::error_code error;
        const bool toFolder = std::filesystem::is_directory(root_ / path, error);
        if (isMedia || toFolder || error)
            skipHidden(path, QStringLiteral("sembolik bağ"));
    }

    void visitFile(DIR* directory, const std::string& path, const std::string& name,
                   const struct stat& status, std::size_t folder) {
        const FileVersion version = FileVersion::of(status);
        if (name.starts_with('.'))
            return skipHidden(path, QStringLiteral("gizli dosya"));
        if (!S_ISREG(status.st_mode))
            return skipped_(path, QStringLiteral("sıradan bir dosya değil"));
        if (!isKnown_(path, version) && !isReady(directory, path, name, status))
            return;
        found_.files.push_back({path, {}, version});
        found_.folderOfFile.push_back(folder);
    }

    /// To be read, as a whole.
    bool isReady(DIR* directory, const std::string& path, const std::string& name,
                 const struct stat& status) {
        if (::faccessat(::dirfd(directory), name.c_str(), R_OK, 0) != 0) {
            skipUnreadable(path, errno);
            return false;
        }
        if (isOpenForWriting(::dirfd(directory), name.c_str(), status)) {
            ++found_.leftOut.inUse;
            skipped_(path, QStringLiteral("henüz yazılıyor"));
            return false;
        }
        return true;
    }

    const std::filesystem::path& root_;
    const KnownVersion& isKnown_;
    const SkipHandler& skipped_;
    const std::stop_token& stop_;
    FolderScan found_;
};

std::unordered_map<std::string, AssetMediaType> typesByExtension() {
    std::unordered_map<std::string, AssetMediaType> types;
    for (const MediaKind& kind : mediaKinds())
        types.emplace(
            std::string(kind.extension.data(), static_cast<std::size_t>(kind.extension.size())),
            kind.mediaClass == MediaClass::movie ? AssetMediaType::video : AssetMediaType::image);
    return types;
}

} // namespace

AssetMediaType mediaTypeOfName(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1); // npos + 1 is 0
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos)
        return AssetMediaType::unknown;
    std::string extension(name.substr(dot + 1));
    std::ranges::transform(extension, extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    static const std::unordered_map<std::string, AssetMediaType> types = typesByExtension();
    const auto found = types.find(extension);
    return found == types.end() ? AssetMediaType::unknown : found->second;
}

FolderScan scanFolder(const std::filesystem::path& root, const KnownVersion& isKnown,
                      const SkipHandler& skipped, const std::stop_token& stop) {
    return Scanner(root, isKnown, skipped, stop).run();
}

} // namespace quorvane
