#include "library/PhotoLibrary.h"

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

} // namespace quorvane
