#include "platform/bundle/LibrarySnapshot.h"

#include "library/FileExport.h"
#include "library/PhotoLibrary.h"

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr const char* databaseName = "Photos.sqlite";
constexpr const char* logName = "Photos.sqlite-wal";
constexpr int attempts = 5;

const std::filesystem::path& requireSupported(const std::filesystem::path& bundle) {
    const auto exists = [](const std::filesystem::path& file) {
        struct stat status {};
        return ::stat(file.c_str(), &status) == 0;
    };
    if (!exists(bundle))
        throw PhotoLibraryError(
            QStringLiteral("Fotoğraflar arşivine ulaşılamıyor: %1").arg(pathText(bundle)));
    if (exists(bundle / "database" / databaseName))
        return bundle;
    if (exists(bundle / "database/photos.db"))
        throw PhotoLibraryError(
            QStringLiteral("Bu Fotoğraflar arşivi çok eski: macOS 10.15 veya sonrasının "
                           "Fotoğraflar arşivi gerekir (%1)")
                .arg(pathText(bundle)));
    throw PhotoLibraryError(
        QStringLiteral("Bu bir Fotoğraflar arşivi değil: veritabanı bulunamadı (%1)")
            .arg(pathText(bundle)));
}

} // namespace

LibrarySnapshot::LibrarySnapshot(const std::filesystem::path& bundle,
                                 const std::filesystem::path& workFolder)
    : bundle_(requireSupported(bundle)), folder_(workFolder) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        version_ = currentVersion();
        try {
            copy(databaseName);
            if (version_.log.size > 0)
                copy(logName);
        } catch (const PhotoLibraryError&) {
            continue; // changed under the copy
        }
        if (isCurrent())
            return;
    }
    throw PhotoLibraryError(
        QStringLiteral("Fotoğraflar arşivi şu anda sürekli değişiyor, sonra yeniden deneyin: %1")
            .arg(pathText(bundle)));
}

bool LibrarySnapshot::isCurrent() const {
    return version_.database.size >= 0 && version_ == currentVersion();
}

LibrarySnapshot::FileVersion LibrarySnapshot::versionOf(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return {};
    return {status.st_size, status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec,
            status.st_ino};
}

LibrarySnapshot::Version LibrarySnapshot::currentVersion() const {
    return {versionOf(bundle_ / "database" / databaseName),
            versionOf(bundle_ / "database" / logName)};
}

void LibrarySnapshot::copy(const char* name) const {
    const std::filesystem::path relative = std::filesystem::path("database") / name;
    const std::filesystem::path destination = folder_.path() / name;
    ::unlink(destination.c_str()); // of an earlier attempt
    exportFile(openOriginalBeneath(bundle_, relative), bundle_ / relative, destination, {});
}

} // namespace quorvane
