#pragma once

#include "foundation/Guarded.h"
#include "foundation/SettingsStore.h"

#include <QByteArray>
#include <QJsonObject>

#include <filesystem>
#include <memory>
#include <optional>

namespace quorvane {

/// The user defaults. Any thread. Throws what the store throws.
class Preferences {
  public:
    /// In a file of the product's own (`PreferencesFile`).
    explicit Preferences(const std::filesystem::path& file);
    /// `store` outlives this.
    explicit Preferences(SettingsStore& store);

    std::optional<QString> string(const QString& key) const;
    bool boolean(const QString& key) const;        ///< absent or of another type: false
    std::int64_t number(const QString& key) const; ///< the same: 0
    std::optional<QByteArray> data(const QString& key) const;

    void setString(const QString& key, const QString& value);
    void setBoolean(const QString& key, bool value);
    void setData(const QString& key, const QByteArray& value);
    void remove(const QString& key);

    /// A value for this process only, which wins over the stored one until the key is written.
    void setVolatile(const QString& key, const QJsonValue& value);

    /// Whether such a value is in force.
    bool isVolatile(const QString& key) const;

    void removeDamaged() { store_.removeDamaged(); }

  private:
    QJsonValue value(const QString& key) const;
    void change(const QString& key, const QJsonValue& value);

    const std::unique_ptr<SettingsStore> own_;
    SettingsStore& store_;
    Guarded<QJsonObject> volatileValues_; ///< locked also while the store is asked
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
/// Bytes a second that all uploads together may take; 0: as many as there are.
inline const QString uploadLimit = QStringLiteral("com.quorvane.google.upload_limit");
inline const QString dateFallbackMode = QStringLiteral("com.quorvane.dateFallbackMode");
inline const QString isAutoDeleteEnabled = QStringLiteral("Quorvane.isAutoDeleteEnabled");
inline const QString appTheme = QStringLiteral("Quorvane.appTheme");
inline const QString notificationsMuted = QStringLiteral("Quorvane.notificationsMuted");
/// Milliseconds since 1970.
inline const QString lastSyncTime = QStringLiteral("com.quorvane.last_sync_time");
inline const QString autoSync = QStringLiteral("com.quorvane.auto_sync");
inline const QString waitsOnMetered = QStringLiteral("com.quorvane.waits_on_metered");
/// Milliseconds since 1970; absent while nothing is paused.
inline const QString pausedUntil = QStringLiteral("com.quorvane.paused_until");
inline const QString libraryPath = QStringLiteral("com.quorvane.library_path");
/// What tells that library from every other, for when it is away.
inline const QString libraryIdentity = QStringLiteral("com.quorvane.library_identity");
/// When it was first found missing; milliseconds since 1970.
inline const QString libraryAwaySince = QStringLiteral("com.quorvane.library_away_since");
/// What was chosen for each library, by that.
inline const QString libraryChoices = QStringLiteral("com.quorvane.library_choices");
} // namespace preferenceKeys

} // namespace quorvane
