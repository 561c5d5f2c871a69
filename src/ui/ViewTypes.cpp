#include "ui/ViewTypes.h"

#include <algorithm>

namespace quorvane {

SyncVisualState visualStateOf(ProductState state) {
    switch (state) {
    case ProductState::signedOut:
    case ProductState::sessionLapsed:
        return SyncVisualState::signedOut;
    case ProductState::libraryAway:
    case ProductState::waiting:
    case ProductState::waitingQuota:
        return SyncVisualState::waiting;
    case ProductState::running:
        return SyncVisualState::syncing;
    case ProductState::failed:
        return SyncVisualState::error;
    case ProductState::noLibrary:
    case ProductState::stopped:
    case ProductState::neverBackedUp:
    case ProductState::itemsWaiting:
    case ProductState::heldBack:
    case ProductState::finished:
    case ProductState::upToDate:
        break;
    }
    return SyncVisualState::idle;
}

QString rawValue(AppTheme theme) {
    switch (theme) {
    case AppTheme::light:
        return QStringLiteral("light");
    case AppTheme::dark:
        return QStringLiteral("dark");
    case AppTheme::system:
        break;
    }
    return QStringLiteral("system");
}

AppTheme appThemeFrom(const QString& text) {
    const auto* found =
        std::ranges::find_if(allAppThemes, [&](AppTheme theme) { return rawValue(theme) == text; });
    return found == allAppThemes.end() ? AppTheme::system : *found;
}

QVariantMap toVariant(const LocalAlbumItem& album) {
    return {{QStringLiteral("id"), album.id},
            {QStringLiteral("title"), album.title},
            {QStringLiteral("count"), album.count},
            {QStringLiteral("isSmart"), album.isSmart}};
}

QVariantMap toVariant(const GoogleAlbum& album) {
    return {{QStringLiteral("id"), album.id},
            {QStringLiteral("title"), album.title.value_or(QString())},
            {QStringLiteral("menuTitle"), album.menuDisplayTitle()},
            {QStringLiteral("count"), static_cast<qint64>(album.itemCount())}};
}

QVariantMap toVariant(const FailedCategorySummary& summary) {
    return {{QStringLiteral("categoryName"), summary.categoryName},
            {QStringLiteral("count"), summary.count},
            {QStringLiteral("explanation"), summary.explanation},
            {QStringLiteral("systemImage"), summary.systemImage}};
}

QVariantMap toVariant(const ActiveTransferItem& transfer) {
    return {{QStringLiteral("id"), transfer.id},
            {QStringLiteral("fileName"), transfer.fileName},
            {QStringLiteral("isVideo"), transfer.isVideo},
            {QStringLiteral("progress"), transfer.progress()}};
}

} // namespace quorvane
