#include "platform/macos/PhotoKitRemoval.h"

#include "platform/macos/Answer.h"
#include "platform/macos/PhotoKitTranslation.h"

namespace quorvane::photokit {

QString obstacleToRemoval(const QString& localIdentifier) {
    @autoreleasepool {
        PHAsset* asset = findAsset(localIdentifier);
        if (!asset)
            return QStringLiteral("Fotoğraflar arşivinde bulunamadı");
        // The other pictures of a burst are in no fetch result, and would go with it.
        if ([asset representsBurst])
            return QStringLiteral("seri çekimin öteki kareleri yüklenmez");
        if (![asset canPerformEditOperation:PHAssetEditOperationDelete])
            return QStringLiteral("Fotoğraflar bu öğenin silinmesine izin vermiyor");
        return {};
    }
}

std::optional<QString> remove(const QStringList& localIdentifiers, const std::stop_token& stop) {
    const auto answer = std::make_shared<Answer<QString>>();
    @autoreleasepool {
        PHFetchResult<PHAsset*>* assets =
            [[PHAsset fetchAssetsWithLocalIdentifiers:stringsOf(localIdentifiers)
                                              options:nil] retain]; // until the answer
        [[PHPhotoLibrary sharedPhotoLibrary]
            performChanges:^{
              [PHAssetChangeRequest deleteAssets:assets];
            }
            completionHandler:^(BOOL success, NSError* error) {
              answer->give(success ? QString() : reasonOf(error));
              [assets release];
            }];
    }
    return answer->wait(stop);
}

} // namespace quorvane::photokit
