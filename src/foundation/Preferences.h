#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>

struct stat;

namespace quorvane {

/// The user defaults: one JSON file, mode 0600 in a folder of mode 0700. Any thread; two processes
/// may use one file without losing each other's keys (a write merges into the file as it then is).
/// A file that cannot be read is never taken for an empty one, nor written over: whoever asks then
/// gets what was read before, or a `FileError`. One that is no JSON is kept beside under another
/// name, which is told once by an `Error`.
class Preferences {
  public:
    explicit Preferences(std::filesystem::path file);

    std::optional<QString> string(const QString& key) const;
    bool boolean(const QString& key) const; ///< absent or of another type: false
    std::optional<QByteArray> data(const QString& key) const;

    void setString(const QString& key, const QString& value);
    void setBoolean(const QString& key, bool value);
    void setData(const QString& key, const QByteArray& value);
    void remove(const QString& key);

    /// A value for this process only, which wins over the stored one until the key is written.
    void setVolatile(const QString& key, const QJsonValue& value);

    /// Whether such a value is in force.
    bool isVolatile(const QString& key) const;

    /// Deletes the damaged files that were kept beside: there may be secrets in them.
    void removeDamaged();

  private:
    struct Version {
        long long inode = -1, size = -1, seconds = 0, nanoseconds = 0;
        bool operator==(const Version&) const = default;
    };

    QJsonValue value(const QString& key) const;
    void change(const QString& key, const std::function<void(QJsonObject&)>& edit);
    static Version versionOf(const struct stat& info);
    enum class ProcessLock { held, notHeld };

    std::filesystem::path besides(const char* suffix) const;
    void reloadIfChanged(ProcessLock lock) const;
    void setAside(const Version& damaged, ProcessLock lock) const;

    std::filesystem::path file_;
    mutable std::mutex mutex_;
    mutable Version version_;
    mutable QJsonObject values_; ///< as read last
    mutable bool isLoaded_ = false;
    mutable bool isSetAside_ = false; ///< `values_` are those before the file was damaged
    QJsonObject volatileValues_;
};

/// The keys of the product's settings, as stored.
namespace preferenceKeys {
inline const QString sourceAlbumID = QStringLiteral("com.quorvane.source_album_id");
inline const QString sourceAlbumTitle = QStringLiteral("com.quorvane.source_album_title");
/// The library that the source album is one of.
inline const QString sourceAlbumLibrary = QStringLiteral("com.quorvane.source_album_library");
inline const QString targetAlbumID = QStringLiteral("com.quorvane.google.target_album_id");
inline const QString targetAlbumTitle = QStringLiteral("com.quorvane.google.target_album_title");
inline const QString localCreatedAlbums =
    QStringLiteral("com.quorvane.google.local_created_albums");
/// Which album was made to continue which: a JSON object of album ids.
inline const QString rolloverParts = QStringLiteral("com.quorvane.google.rollover_parts");
inline const QString autoRolloverOnLimit =
    QStringLiteral("com.quorvane.google.autoRolloverOnLimit");
inline const QString stopAtLimit = QStringLiteral("com.quorvane.google.stopAtLimit");
inline const QString dateFallbackMode = QStringLiteral("com.quorvane.dateFallbackMode");
inline const QString isAutoDeleteEnabled = QStringLiteral("Quorvane.isAutoDeleteEnabled");
inline const QString appTheme = QStringLiteral("Quorvane.appTheme");
inline const QString notificationsMuted = QStringLiteral("Quorvane.notificationsMuted");
inline const QString libraryPath = QStringLiteral("com.quorvane.library_path");
/// What tells that library from every other, for when it is away.
inline const QString libraryIdentity = QStringLiteral("com.quorvane.library_identity");
/// What was chosen for each library, by that.
inline const QString libraryChoices = QStringLiteral("com.quorvane.library_choices");
} // namespace preferenceKeys

} // namespace quorvane
