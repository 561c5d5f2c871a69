#include "foundation/PreferencesFile.h"

#include "foundation/FileLock.h"
#include "foundation/System.h"

#include <QJsonDocument>

#include <cerrno>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::int64_t largestFile = 64 << 20;
constexpr const char* lockSuffix = ".lock";
constexpr const char* damagedSuffix = ".bozuk-";

} // namespace

PreferencesFile::Version PreferencesFile::versionOf(const struct stat& info) {
    const timespec modified = system::modificationTime(info);
    return {static_cast<long long>(info.st_ino), info.st_size, modified.tv_sec, modified.tv_nsec};
}

PreferencesFile::PreferencesFile(std::filesystem::path file) : file_(std::move(file)) {}

QJsonValue PreferencesFile::value(const QString& key) {
    const auto known = known_.lock();
    try {
        reloadIfChanged(*known, ProcessLock::notHeld);
    } catch (const Error&) {
        if (!known->isLoaded)
            throw;
        // What was read last still holds: a setting never changes because a disk has a bad moment.
    }
    return known->values.value(key);
}

void PreferencesFile::change(const QString& key, const QJsonValue& value) {
    const auto known = known_.lock();
    const std::filesystem::path folder = file_.parent_path();
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    ::chmod(folder.c_str(), 0700);

    // The lock file is never removed: the preferences file itself is replaced by each write.
    const FileLock processLock(besides(lockSuffix));

    reloadIfChanged(*known, ProcessLock::held);
    QJsonObject changed = known->values;
    if (value.isUndefined())
        changed.remove(key);
    else
        changed[key] = value;
    if (changed == known->values)
        return;
    replaceFile(file_, QJsonDocument(changed).toJson());
    reloadIfChanged(*known, ProcessLock::held);
}

std::filesystem::path PreferencesFile::besides(const char* suffix) const {
    std::filesystem::path path = file_;
    path += suffix;
    return path;
}

/// A replaced file has another inode, so one stat tells whether to read.
void PreferencesFile::reloadIfChanged(Known& known, ProcessLock lock) {
    struct stat info {};
    if (::stat(file_.c_str(), &info) != 0) {
        if (errno != ENOENT && errno != ENOTDIR)
            throw FileError(QStringLiteral("Ayarlar okunamadı"), file_, errno);
        known.version = Version();
        if (!known.isSetAside)
            known.values = QJsonObject();
        known.isLoaded = true;
        return;
    }
    const Version found = versionOf(info);
    if (found == known.version)
        return;
    const QJsonDocument document = QJsonDocument::fromJson(readWholeFile(file_, largestFile));
    if (!document.isObject())
        return setAside(known, found, lock);
    known = {.version = found, .values = document.object(), .isLoaded = true};
}

/// What cannot be understood may still be worth a look, and is nobody
/// else's: it is not written over. By now it may be a good file that another process wrote.
void PreferencesFile::setAside(Known& known, const Version& damaged, ProcessLock lock) {
    std::optional<FileLock> processLock;
    if (lock == ProcessLock::notHeld)
        processLock.emplace(besides(lockSuffix));
    struct stat info {};
    if (::stat(file_.c_str(), &info) != 0 || versionOf(info) != damaged)
        return reloadIfChanged(known, ProcessLock::held);
    std::filesystem::path aside = file_;
    for (int number = 1; aside == file_ || ::access(aside.c_str(), F_OK) == 0; ++number)
        aside = besides((damagedSuffix + std::to_string(number)).c_str());
    if (::rename(file_.c_str(), aside.c_str()) != 0)
        throw FileError(QStringLiteral("Bozuk ayar dosyası kenara alınamadı"), file_, errno);
    ::chmod(aside.c_str(), 0600);
    known.isSetAside = known.isLoaded;
    throw Error(QStringLiteral("Ayar dosyası bozuktu, kenara alındı: %1. Ayarları (hedef albüm, "
                               "kaynak albüm, arşiv) yeniden seçin.")
                    .arg(pathText(aside)));
}

void PreferencesFile::removeDamaged() {
    const std::filesystem::path folder = file_.parent_path();
    const std::string prefix = file_.filename().native() + damagedSuffix;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (entry.path().filename().native().starts_with(prefix))
            ::unlink(entry.path().c_str());
}

} // namespace quorvane
