#pragma once

#include "foundation/Date.h"
#include "foundation/Fault.h"

#include <QString>

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace quorvane {

enum class SyncStatus {
    discovered,     ///< known, not yet staged
    staged,         ///< exported to the staging folder, waiting for upload
    uploading,      ///< bytes on their way; read, never written: nothing would bring it back
    verified,       ///< media item created at the destination
    deletedLocally, ///< verified, and the asset then removed from the photo library
    failed,         ///< `lastError` says why
    excluded,       ///< deliberately not synced
    dateUnresolved, ///< held back: no trustworthy capture date
};

inline constexpr std::array allSyncStatuses{
    SyncStatus::discovered, SyncStatus::staged,         SyncStatus::uploading,
    SyncStatus::verified,   SyncStatus::deletedLocally, SyncStatus::failed,
    SyncStatus::excluded,   SyncStatus::dateUnresolved,
};

enum class MediaType { photo, video, livePhoto };

/// The texts stored in the database.
QString rawValue(SyncStatus status);
QString rawValue(MediaType type);
std::optional<SyncStatus> syncStatusFrom(const QString& rawValue);
std::optional<MediaType> mediaTypeFrom(const QString& rawValue);

/// The destination and account of every record until accounts are told apart.
inline const QString googlePhotosProvider = QStringLiteral("google_photos");
inline const QString pendingAccount = QStringLiteral("pending_oauth");

/// One asset's progress towards one provider and account; the three identifiers are its key.
struct SyncRecord {
    QString assetLocalIdentifier;
    QString providerID = googlePhotosProvider;
    QString accountID = pendingAccount;
    MediaType mediaType = MediaType::photo;
    std::optional<QString> sha256Hash;         ///< of the staged file, lower-case hexadecimal
    std::optional<std::int64_t> fileSizeBytes; ///< of the staged file
    std::optional<QString> uploadToken;
    std::optional<QString> remoteMediaID;
    SyncStatus syncStatus = SyncStatus::discovered;
    int retryCount = 0; ///< how often the record was set to failed
    std::optional<QString> lastError;
    Date createdAt;
    Date updatedAt;
};

/// The grouped view of failures that a person sees.
struct FailedCategorySummary {
    QString categoryName;
    int count = 0;
    QString explanation;
    QString systemImage; ///< name of a symbol image

    bool operator==(const FailedCategorySummary&) const = default;
};

/// Failed records of one kind.
struct FailureCount {
    QString error; ///< the last error text
    int count = 0;
    std::optional<FaultCode> fault = {}; ///< where it is known; the text decides only elsewhere
};

/// Of these failures; its count is 0.
FailedCategorySummary categoryOf(const FailureCount& failure);

/// Largest first, equal counts in order of first appearance.
std::vector<FailedCategorySummary> summarizeFailures(const std::vector<FailureCount>& failures);

} // namespace quorvane
