#pragma once

#include "library/PhotoLibrary.h"
#include "platform/macos/CocoaText.h"

#import <Photos/Photos.h>

/// PhotoKit's objects as the port's values, and back. Objective-C++ only; any thread, inside an
/// autorelease pool.
namespace quorvane::photokit {

PhotoAsset assetOf(PHAsset* asset);
AssetCollection collectionOf(PHAssetCollection* collection);
CollectionList listOf(PHCollectionList* list);
std::vector<Collection> collectionsOf(PHFetchResult<PHCollection*>* result);

/// Nil when it is not there.
PHAsset* findAsset(const QString& localIdentifier);

/// A result that carries PhotoKit's own along, so that a change can be asked about it. Throws
/// `Cancelled`.
AssetFetchResult resultOf(PHFetchResult<PHAsset*>* result, const std::stop_token& stop = {});

/// PhotoKit's own result; nil when the result is not from `resultOf`.
PHFetchResult<PHAsset*>* fetchedOf(const AssetFetchResult& result);

} // namespace quorvane::photokit
