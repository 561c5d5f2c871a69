#include "platform/folder/FolderScanner.h"

#include "foundation/File.h"
#include "platform/folder/OpenForWriting.h"

#include <algorithm>
#include <cerrno>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::string_view stagingFolderName = "QuorvaneStaging_Permanent";
constexpr std::string_view photosBundleExtension = ".photoslibrary";

std::int64_t nanoseconds(const struct timespec& time) {
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

struct CloseDirectory {
    void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

class Scanner {
  public:
    Scanner(const std::filesystem::path& root, const SkipHandler& skipped,
            const std::stop_token& stop)
        : root_(root), library_(folderLibraryIdentifier(root)), skipped_(skipped), stop_(stop) {}

    FolderIndex run() {
        addFolder({});
        for (std::size_t position = 0; position < folders_.size(); ++position)
            scan(position);
        return {std::move(files_), std::move(folders_), std::move(folderOfFile_), hasUnfinished_};
    }

  private:
    std::size_t addFolder(const std::string& path) {
        folders_.push_back(
            {path, 0, folderAlbumIdentifier(path), folderListIdentifier(path), {}, {}, false});
        return folders_.size() - 1;
    }

    void scan(std::size_t position) {
        const std::string path = folders_[position].path;
        const Directory directory = open(path);
        if (!directory)
            return;
        struct stat status {};
        ::fstat(::dirfd(directory.get()), &status);
        folders_[position].modified = nanoseconds(status.st_mtim);

        std::vector<std::string> subfolders;
        errno = 0;
        while (const dirent* entry = ::readdir(directory.get()))
            visit(directory.get(), *entry, position, subfolders);
        if (errno != 0)
            skipped_(path, errorNumberText(errno));
        std::ranges::sort(subfolders);
        for (const std::string& subfolder : subfolders) {
            const std::size_t added = addFolder(subfolder);
            folders_[position].folders.push_back(added);
        }
    }

    Directory open(const std::string& path) const {
        // The library's own name may be a link; no folder inside it may.
        const int follow = path.empty() ? 0 : O_NOFOLLOW;
        const int fd = ::open((root_ / path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | follow);
        if (fd >= 0)
            return Directory(::fdopendir(fd));
        if (path.empty())
            throw PhotoLibraryError(QStringLiteral("Resim klasörü okunamıyor: %1 (%2)")
                                        .arg(pathText(root_), errorNumberText(errno)));
        skipped_(path, errorNumberText(errno));
        return nullptr;
    }

    void visit(DIR* directory, const dirent& entry, std::size_t folder,
               std::vector<std::string>& subfolders) {
        if (stop_.stop_requested())
            throw Cancelled();
        const std::string name = entry.d_name;
        if (name == "." || name == ".." || name == stagingFolderName || name.starts_with("._"))
            return; // "._" is the resource fork of a file, not a file of its own
        const bool isMedia = mediaTypeOfName(name) != AssetMediaType::unknown;
        if (entry.d_type == DT_REG && !isMedia)
            return;
        const std::string path =
            folders_[folder].path.empty() ? name : folders_[folder].path + "/" + name;
        struct stat status {};
        if (::fstatat(::dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            skipped_(path, errorNumberText(errno));
        else if (S_ISDIR(status.st_mode))
            visitFolder(path, name, subfolders);
        else if (S_ISLNK(status.st_mode))
            visitLink(path, isMedia);
        else if (isMedia)
            visitFile(directory, path, name, status, folder);
        errno = 0;
    }

    void visitFolder(const std::string& path, const std::string& name,
                     std::vector<std::string>& subfolders) const {
        if (name.starts_with('.'))
            skipped_(path, QStringLiteral("gizli klasör"));
        else if (name.ends_with(photosBundleExtension))
            skipped_(path, QStringLiteral("Fotoğraflar arşivi; ayrıca seçilmelidir"));
        else
            subfolders.push_back(path);
    }

    void visitLink(const std::string& path, bool isMedia) const {
        std::error_code error;
        const bool toFolder = std::filesystem::is_directory(root_ / path, error);
        if (isMedia || toFolder || error)
            skipped_(path, QStringLiteral("sembolik bağ"));
    }

    void visitFile(DIR* directory, const std::string& path, const std::string& name,
                   const struct stat& status, std::size_t folder) {
        if (name.starts_with('.'))
            skipped_(path, QStringLiteral("gizli dosya"));
        else if (!S_ISREG(status.st_mode))
            skipped_(path, QStringLiteral("sıradan bir dosya değil"));
        else if (::faccessat(::dirfd(directory), name.c_str(), R_OK, 0) != 0)
            skipped_(path, errorNumberText(errno));
        else if (isOpenForWriting(::dirfd(directory), name.c_str(), status)) {
            hasUnfinished_ = true;
            skipped_(path, QStringLiteral("henüz yazılıyor"));
        } else {
            files_.push_back(
                {path, folderFileIdentifier(library_, path), nanoseconds(status.st_mtim)});
            folderOfFile_.push_back(folder);
        }
    }

    const std::filesystem::path& root_;
    const QUuid library_;
    const SkipHandler& skipped_;
    const std::stop_token& stop_;
    bool hasUnfinished_ = false;
    std::vector<FolderFile> files_;
    std::vector<Folder> folders_;
    std::vector<std::size_t> folderOfFile_;
};

} // namespace

AssetMediaType mediaTypeOfName(const std::filesystem::path& name) {
    static constexpr std::string_view pictures[] = {".jpg", ".jpeg", ".heic", ".heif", ".png",
                                                    ".tif", ".tiff", ".webp", ".gif"};
    static constexpr std::string_view movies[] = {".mov", ".mp4", ".m4v"};
    std::string extension = name.extension().native();
    if (extension.empty() && name.native().starts_with('.'))
        extension = name.native(); // a hidden file that is all extension
    std::ranges::transform(extension, extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    if (std::ranges::find(pictures, extension) != std::end(pictures))
        return AssetMediaType::image;
    return std::ranges::find(movies, extension) != std::end(movies) ? AssetMediaType::video
                                                                    : AssetMediaType::unknown;
}

FolderIndex scanFolder(const std::filesystem::path& root, const SkipHandler& skipped,
                       const std::stop_token& stop) {
    return Scanner(root, skipped, stop).run();
}

} // namespace quorvane
