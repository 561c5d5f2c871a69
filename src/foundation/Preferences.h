#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>

namespace quorvane {

/// The user defaults: one JSON file, mode 0600 in a folder of mode 0700. Any thread; two processes
/// may use one file without losing each other's keys (a write merges into the file as it then is).
/// A file that cannot be read counts as empty; a write that fails throws `FileError`.
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

  private:
    struct Version {
        long long inode = -1, size = -1, seconds = 0, nanoseconds = 0;
        bool operator==(const Version&) const = default;
    };

    QJsonValue value(const QString& key) const;
    void change(const QString& key, const std::function<void(QJsonObject&)>& edit);
    void reloadIfChanged() const;

    std::filesystem::path file_;
    mutable std::mutex mutex_;
    mutable Version version_;
    mutable QJsonObject values_;
    QJsonObject volatileValues_;
};

/// The keys of the product's settings, as stored.
namespace preferenceKeys {
inline const QString sourceAlbumID = QStringLiteral("com.quorvane.source_album_id");
inline const QString sourceAlbumTitle = QStringLiteral("com.quorvane.source_album_title");
inline const QString targetAlbumID = QStringLiteral("com.quorvane.google.target_album_id");
inline const QString targetAlbumTitle = QStringLiteral("com.quorvane.google.target_album_title");
inline const QString localCreatedAlbums =
    QStringLiteral("com.quorvane.google.local_created_albums");
inline const QString autoRolloverOnLimit =
    QStringLiteral("com.quorvane.google.autoRolloverOnLimit");
inline const QString stopAtLimit = QStringLiteral("com.quorvane.google.stopAtLimit");
inline const QString dateFallbackMode = QStringLiteral("com.quorvane.dateFallbackMode");
inline const QString isAutoDeleteEnabled = QStringLiteral("Quorvane.isAutoDeleteEnabled");
inline const QString appTheme = QStringLiteral("Quorvane.appTheme");
inline const QString notificationsMuted = QStringLiteral("Quorvane.notificationsMuted");
inline const QString libraryPath = QStringLiteral("com.quorvane.library_path");
} // namespace preferenceKeys

} // namespace quorvane
