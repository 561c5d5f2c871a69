#include "library/PhotoLibrary.h"

#include "store/RecordRemainders.h"

#include <algorithm>

namespace quorvane {

std::optional<PhotoAssetResource>
resourceToStage(const std::vector<PhotoAssetResource>& resources) {
    for (const PhotoAssetResource& resource : resources)
        if (resource.type == AssetResourceType::photo ||
            resource.type == AssetResourceType::video ||
            resource.type == AssetResourceType::fullSizePhoto)
            return resource;
    return std::nullopt;
}

std::optional<QString> nameOf(PhotoLibrary& library, const QString& identifier) {
    const auto assets = library.fetchAssets(QStringList{identifier});
    if (assets->empty())
        return std::nullopt;
    const auto resource = resourceToStage(library.assetResources(assets->front()));
    return resource ? std::optional(resource->originalFilename) : std::nullopt;
}

std::optional<PhotoAssetResource> movieToJoin(const std::vector<PhotoAssetResource>& resources) {
    const auto movie = std::ranges::find(resources, true, &PhotoAssetResource::joinsStill);
    return movie == resources.end() ? std::nullopt : std::optional(*movie);
}

int remainderOf(const std::vector<PhotoAssetResource>& resources, bool joinsMovie) {
    const auto sent = resourceToStage(resources);
    bool isSentSeen = false;
    int behind = 0;
    for (const PhotoAssetResource& resource : resources) {
        if (!isSentSeen && sent && resource.type == sent->type) {
            isSentSeen = true;
            continue;
        }
        switch (resource.type) {
        case AssetResourceType::photo:
        case AssetResourceType::video:
            behind |= RecordRemainders::original;
            break;
        case AssetResourceType::fullSizePhoto:
        case AssetResourceType::fullSizeVideo:
            behind |= RecordRemainders::edit;
            break;
        case AssetResourceType::pairedVideo:
        case AssetResourceType::fullSizePairedVideo:
            behind |= joinsMovie ? 0 : RecordRemainders::movie;
            break;
        case AssetResourceType::alternatePhoto:
            behind |= RecordRemainders::raw;
            break;
        default:
            break;
        }
    }
    return behind;
}

void requireThere(const PhotoLibrary& library) {
    const AuthorizationStatus status = library.authorizationStatus();
    if (status != AuthorizationStatus::authorized && status != AuthorizationStatus::limited)
        throw PhotoLibraryError::away(QStringLiteral("Arşiv yerinde değil veya okunamıyor"));
}

} // namespace quorvane
