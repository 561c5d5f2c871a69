#pragma once

// The part of PhotoKit that the adapters use, as its public documentation describes it. Instance
// variables are the stand-in's own.
#import <CoreLocation/CoreLocation.h>
#import <Foundation/Foundation.h>

typedef void (^dispatch_block_t)(void);

typedef NS_ENUM(NSInteger, PHAuthorizationStatus) {
    PHAuthorizationStatusNotDetermined = 0,
    PHAuthorizationStatusRestricted,
    PHAuthorizationStatusDenied,
    PHAuthorizationStatusAuthorized,
    PHAuthorizationStatusLimited,
};
typedef NS_ENUM(NSInteger, PHAccessLevel) {
    PHAccessLevelAddOnly = 1,
    PHAccessLevelReadWrite = 2,
};
typedef NS_ENUM(NSInteger, PHAssetMediaType) {
    PHAssetMediaTypeUnknown = 0,
    PHAssetMediaTypeImage = 1,
    PHAssetMediaTypeVideo = 2,
    PHAssetMediaTypeAudio = 3,
};
typedef NS_OPTIONS(NSUInteger, PHAssetMediaSubtype) {
    PHAssetMediaSubtypeNone = 0,
    PHAssetMediaSubtypePhotoLive = (1UL << 3),
};
typedef NS_ENUM(NSInteger, PHAssetEditOperation) {
    PHAssetEditOperationDelete = 1,
    PHAssetEditOperationContent = 2,
    PHAssetEditOperationProperties = 3,
};
typedef NS_ENUM(NSInteger, PHAssetResourceType) {
    PHAssetResourceTypePhoto = 1,
    PHAssetResourceTypeVideo = 2,
    PHAssetResourceTypeFullSizePhoto = 5,
    PHAssetResourceTypeAdjustmentData = 7,
    PHAssetResourceTypePairedVideo = 9,
};
typedef NS_ENUM(NSInteger, PHAssetCollectionType) {
    PHAssetCollectionTypeAlbum = 1,
    PHAssetCollectionTypeSmartAlbum = 2,
};
typedef NS_ENUM(NSInteger, PHAssetCollectionSubtype) {
    PHAssetCollectionSubtypeAlbumRegular = 2,
    PHAssetCollectionSubtypeAny = NSIntegerMax,
};
typedef NS_ENUM(NSInteger, PHCollectionListType) {
    PHCollectionListTypeFolder = 2,
    PHCollectionListTypeSmartFolder = 3,
};
typedef NS_ENUM(NSInteger, PHCollectionListSubtype) {
    PHCollectionListSubtypeRegularFolder = 100,
    PHCollectionListSubtypeAny = NSIntegerMax,
};
typedef int32_t PHAssetResourceDataRequestID;

@class PHAsset, PHAssetCollection, PHCollection, PHCollectionList, PHFetchOptions;

@interface PHObject : NSObject {
    NSString* _localIdentifier;
}
@property(nonatomic, copy, readonly) NSString* localIdentifier;
@end

@interface PHFetchResult<ObjectType> : NSObject <NSFastEnumeration> {
    NSArray* _objects;
    void* _query;
}
@property(nonatomic, readonly) NSUInteger count;
@property(nonatomic, readonly, nullable) ObjectType firstObject;
- (ObjectType)objectAtIndex:(NSUInteger)index;
@end

@interface PHFetchOptions : NSObject {
    NSArray<NSSortDescriptor*>* _sortDescriptors;
}
@property(nonatomic, strong, nullable) NSArray<NSSortDescriptor*>* sortDescriptors;
@end

@interface PHAsset : PHObject {
    void* _row;
}
@property(nonatomic, assign, readonly) PHAssetMediaType mediaType;
@property(nonatomic, assign, readonly) PHAssetMediaSubtype mediaSubtypes;
@property(nonatomic, strong, readonly, nullable) NSDate* creationDate;
@property(nonatomic, strong, readonly, nullable) NSDate* modificationDate;
@property(nonatomic, strong, readonly, nullable) CLLocation* location;
@property(nonatomic, assign, readonly) BOOL representsBurst;
- (BOOL)canPerformEditOperation:(PHAssetEditOperation)editOperation;
+ (PHFetchResult<PHAsset*>*)fetchAssetsWithOptions:(nullable PHFetchOptions*)options;
+ (PHFetchResult<PHAsset*>*)fetchAssetsInAssetCollection:(PHAssetCollection*)assetCollection
                                                 options:(nullable PHFetchOptions*)options;
+ (PHFetchResult<PHAsset*>*)fetchAssetsWithLocalIdentifiers:(NSArray<NSString*>*)identifiers
                                                    options:(nullable PHFetchOptions*)options;
@end

@interface PHCollection : PHObject {
    NSString* _localizedTitle;
    NSArray* _children;
}
@property(nonatomic, strong, readonly, nullable) NSString* localizedTitle;
+ (PHFetchResult<PHCollection*>*)fetchCollectionsInCollectionList:(PHCollectionList*)list
                                                          options:(nullable PHFetchOptions*)options;
+ (PHFetchResult<PHCollection*>*)fetchTopLevelUserCollectionsWithOptions:
    (nullable PHFetchOptions*)options;
@end

@interface PHAssetCollection : PHCollection
@property(nonatomic, assign, readonly) PHAssetCollectionType assetCollectionType;
@property(nonatomic, assign, readonly) PHAssetCollectionSubtype assetCollectionSubtype;
@property(nonatomic, assign, readonly) NSUInteger estimatedAssetCount;
+ (PHFetchResult<PHAssetCollection*>*)
    fetchAssetCollectionsWithLocalIdentifiers:(NSArray<NSString*>*)identifiers
                                      options:(nullable PHFetchOptions*)options;
+ (PHFetchResult<PHAssetCollection*>*)
    fetchAssetCollectionsWithType:(PHAssetCollectionType)type
                          subtype:(PHAssetCollectionSubtype)subtype
                          options:(nullable PHFetchOptions*)options;
@end

@interface PHCollectionList : PHCollection
@property(nonatomic, assign, readonly) PHCollectionListType collectionListType;
+ (PHFetchResult<PHCollectionList*>*)
    fetchCollectionListsWithLocalIdentifiers:(NSArray<NSString*>*)identifiers
                                     options:(nullable PHFetchOptions*)options;
+ (PHFetchResult<PHCollectionList*>*)fetchCollectionListsWithType:
                                         (PHCollectionListType)collectionListType
                                                          subtype:(PHCollectionListSubtype)subtype
                                                          options:(nullable PHFetchOptions*)options;
@end

@interface PHAssetResource : NSObject {
    NSString* _assetLocalIdentifier;
    void* _row;
}
@property(nonatomic, assign, readonly) PHAssetResourceType type;
@property(nonatomic, copy, readonly) NSString* assetLocalIdentifier;
@property(nonatomic, copy, readonly) NSString* originalFilename;
+ (NSArray<PHAssetResource*>*)assetResourcesForAsset:(PHAsset*)asset;
@end

@interface PHAssetResourceRequestOptions : NSObject {
    BOOL _networkAccessAllowed;
}
@property(nonatomic, assign, getter=isNetworkAccessAllowed) BOOL networkAccessAllowed;
@end

@interface PHAssetResourceManager : NSObject
+ (PHAssetResourceManager*)defaultManager;
- (PHAssetResourceDataRequestID)
    requestDataForAssetResource:(PHAssetResource*)resource
                        options:(nullable PHAssetResourceRequestOptions*)options
            dataReceivedHandler:(void (^)(NSData* data))handler
              completionHandler:(void (^)(NSError* _Nullable error))completionHandler;
- (void)writeDataForAssetResource:(PHAssetResource*)resource
                           toFile:(NSURL*)fileURL
                          options:(nullable PHAssetResourceRequestOptions*)options
                completionHandler:(void (^)(NSError* _Nullable error))completionHandler;
- (void)cancelDataRequest:(PHAssetResourceDataRequestID)requestID;
@end

@interface PHAssetChangeRequest : NSObject
+ (void)deleteAssets:(id<NSFastEnumeration>)assets;
@end

@interface PHFetchResultChangeDetails<ObjectType> : NSObject {
    PHFetchResult* _after;
    NSArray* _inserted;
    NSArray* _removed;
    NSArray* _changed;
}
@property(atomic, strong, readonly) PHFetchResult<ObjectType>* fetchResultAfterChanges;
@property(atomic, assign, readonly) BOOL hasIncrementalChanges;
@property(atomic, strong, readonly, nullable) NSArray<ObjectType>* removedObjects;
@property(atomic, strong, readonly, nullable) NSArray<ObjectType>* insertedObjects;
@property(atomic, strong, readonly, nullable) NSArray<ObjectType>* changedObjects;
@end

@interface PHChange : NSObject {
    BOOL _isIncremental;
}
- (nullable PHFetchResultChangeDetails*)changeDetailsForFetchResult:(PHFetchResult*)object;
@end

@protocol PHPhotoLibraryChangeObserver <NSObject>
- (void)photoLibraryDidChange:(PHChange*)changeInstance;
@end

@interface PHPhotoLibrary : NSObject
+ (PHPhotoLibrary*)sharedPhotoLibrary;
+ (PHAuthorizationStatus)authorizationStatusForAccessLevel:(PHAccessLevel)accessLevel;
+ (void)requestAuthorizationForAccessLevel:(PHAccessLevel)accessLevel
                                   handler:(void (^)(PHAuthorizationStatus status))handler;
- (void)performChanges:(dispatch_block_t)changeBlock
     completionHandler:(nullable void (^)(BOOL success, NSError* _Nullable error))completionHandler;
- (void)registerChangeObserver:(id<PHPhotoLibraryChangeObserver>)observer;
- (void)unregisterChangeObserver:(id<PHPhotoLibraryChangeObserver>)observer;
@end
