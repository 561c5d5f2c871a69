#pragma once

#include "google/GoogleAlbum.h"
#include "google/TransferActivityTracker.h"
#include "library/PhotoAlbumService.h"
#include "store/StoreCounts.h"
#include "store/SyncRecord.h"
#include "sync/ProductState.h"

#include <QObject>
#include <QVariantMap>

#include <array>
#include <optional>

/// The values that the state model publishes, and the forms in which QML reads them.
namespace quorvane {
Q_NAMESPACE

/// What the status item shows; follows from the product's state.
enum class SyncVisualState { idle, syncing, error, waiting, signedOut };
Q_ENUM_NS(SyncVisualState)

SyncVisualState visualStateOf(ProductState state);

enum class AppTheme { system, light, dark };
Q_ENUM_NS(AppTheme)

inline constexpr std::array allAppThemes{AppTheme::system, AppTheme::light, AppTheme::dark};

/// The text stored in the settings.
QString rawValue(AppTheme theme);
/// An unknown text is `system`.
AppTheme appThemeFrom(const QString& rawValue);

/// What there is of each kind of record.
struct RecordCounts {
    StoreCounts records;
    std::vector<FailedCategorySummary> categories;
    bool operator==(const RecordCounts&) const = default;
};

/// The question before a run that would overflow the target album.
struct PreSync {
    bool show = false;
    QString targetAlbumName;
    QString nextPartName;
    std::int64_t currentCount = 0;
    std::int64_t pendingCount = 0;
    bool operator==(const PreSync&) const = default;
};

/// {id, title, count, isSmart}
QVariantMap toVariant(const LocalAlbumItem& album);
/// {id, title, menuTitle, count}
QVariantMap toVariant(const GoogleAlbum& album);
/// {categoryName, count, explanation, systemImage}
QVariantMap toVariant(const FailedCategorySummary& summary);
/// {id, fileName, isVideo, progress}; progress is 0...1
QVariantMap toVariant(const ActiveTransferItem& transfer);

template <typename Values>
QVariantList toVariantList(const Values& values) {
    QVariantList list;
    for (const auto& value : values)
        list.append(toVariant(value));
    return list;
}

} // namespace quorvane
