#include "foundation/Preferences.h"

#include "foundation/File.h"

#include <QJsonDocument>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace quorvane {

namespace {

constexpr std::int64_t largestFile = 64 << 20;

} // namespace

Preferences::Preferences(std::filesystem::path file) : file_(std::move(file)) {}

std::optional<QString> Preferences::string(const QString& key) const {
    const QJsonValue found = value(key);
    return found.isString() ? std::optional(found.toString()) : std::nullopt;
}

bool Preferences::boolean(const QString& key) const {
    return value(key).toBool(false);
}

std::optional<QByteArray> Preferences::data(const QString& key) const {
    const auto text = string(key);
    return text ? std::optional(QByteArray::fromBase64(text->toLatin1())) : std::nullopt;
}

void Preferences::setString(const QString& key, const QString& value) {
    change(key, [&](QJsonObject& values) { values[key] = value; });
}

void Preferences::setBoolean(const QString& key, bool value) {
    change(key, [&](QJsonObject& values) { values[key] = value; });
}

void Preferences::setData(const QString& key, const QByteArray& value) {
    setString(key, QString::fromLatin1(value.toBase64()));
}

void Preferences::remove(const QString& key) {
    change(key, [&](QJsonObject& values) { values.remove(key); });
}

void Preferences::setVolatile(const QString& key, const QJsonValue& value) {
    const std::lock_guard lock(mutex_);
    volatileValues_[key] = value;
}

QJsonValue Preferences::value(const QString& key) const {
    const std::lock_guard lock(mutex_);
    if (volatileValues_.contains(key))
        return volatileValues_.value(key);
    reloadIfChanged();
    return values_.value(key);
}

void Preferences::change(const QString& key, const std::function<void(QJsonObject&)>& edit) {
    const std::lock_guard lock(mutex_);
    volatileValues_.remove(key);
    const std::filesystem::path folder = file_.parent_path();
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    ::chmod(folder.c_str(), 0700);

    // The lock file is never removed: the preferences file itself is replaced by each write.
    std::filesystem::path lockPath = file_;
    lockPath += ".lock";
    const FileDescriptor processLock = openFile(lockPath, O_RDWR | O_CREAT);
    while (::flock(processLock.get(), LOCK_EX) != 0 && errno == EINTR) {
    }

    reloadIfChanged();
    QJsonObject changed = values_;
    edit(changed);
    if (changed == values_)
        return;
    replaceFile(file_, QJsonDocument(changed).toJson());
    reloadIfChanged();
}

/// Caller holds the lock. A replaced file has another inode, so one stat tells whether to read.
void Preferences::reloadIfChanged() const {
    struct stat info {};
    if (::stat(file_.c_str(), &info) != 0) {
        version_ = Version();
        values_ = QJsonObject();
        return;
    }
    const Version found{static_cast<long long>(info.st_ino), info.st_size, info.st_mtim.tv_sec,
                        info.st_mtim.tv_nsec};
    if (found == version_)
        return;
    try {
        values_ = QJsonDocument::fromJson(readWholeFile(file_, largestFile)).object();
    } catch (const FileError&) {
        values_ = QJsonObject();
    }
    version_ = found;
}

} // namespace quorvane
