#include "macos/StandInPhotos.h"

#import <Photos/Photos.h>

#include <Block.h>

#include <algorithm>
#include <set>

using quorvane::test::StandInPhotos;

namespace {

using Row = StandInPhotos::Row;
using Query = std::function<NSArray*()>;

StandInPhotos& photos() {
    return StandInPhotos::shared();
}

NSString* stringOf(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

NSString* stringOf(const std::optional<std::string>& text) {
    return text ? stringOf(*text) : nil;
}

NSDate* dateOf(const std::optional<double>& seconds) {
    return seconds ? [NSDate dateWithTimeIntervalSince1970:*seconds] : nil;
}

std::set<std::string> setOf(NSArray<NSString*>* strings) {
    std::set<std::string> texts;
    for (NSString* string in strings)
        texts.insert([string UTF8String]);
    return texts;
}

/// One file of one asset.
struct File {
    std::string asset;
    StandInPhotos::Resource resource;
};

thread_local std::vector<std::string>* deletions = nullptr;
std::mutex observersMutex;
std::vector<id<PHPhotoLibraryChangeObserver>> observers;
std::set<int32_t> cancelled;

} // namespace

/// An error that has nothing to say.
@interface SilentError : NSError
@end
@implementation SilentError
- (NSString*)localizedDescription {
    return nil;
}
@end

namespace {

NSError* errorOf(NSString* domain, NSInteger code) {
    if (!photos().mood().describesErrors)
        return [SilentError errorWithDomain:domain code:code userInfo:nil];
    return [NSError errorWithDomain:domain
                               code:code
                           userInfo:@{NSLocalizedDescriptionKey : @"It could not\nbe done."}];
}

/// Runs on the library's thread what ends with a handler of this kind.
template <typename Handler, typename Work>
void answerLater(Handler handler, Work work) {
    auto kept = Block_copy(handler);
    photos().post([kept, work] {
        @autoreleasepool {
            work(kept);
        }
        Block_release(kept);
    });
}

NSError* obstacleTo(const File& file, bool mayUseNetwork) {
    const auto mood = photos().mood();
    if (file.resource.isInCloud && !(mayUseNetwork && mood.isCloudReachable))
        return errorOf(@"PHPhotosErrorDomain", 3164);
    return mood.diskIsFull ? errorOf(NSCocoaErrorDomain, NSFileWriteOutOfSpaceError) : nil;
}

} // namespace

@implementation CLLocation
@synthesize coordinate = _coordinate, altitude = _altitude, verticalAccuracy = _verticalAccuracy;
- (instancetype)initWithCoordinate:(CLLocationCoordinate2D)coordinate
                          altitude:(CLLocationDistance)altitude
                horizontalAccuracy:(CLLocationAccuracy)horizontalAccuracy
                  verticalAccuracy:(CLLocationAccuracy)verticalAccuracy
                         timestamp:(NSDate*)timestamp {
    self = [super init];
    _coordinate = coordinate;
    _altitude = altitude;
    _verticalAccuracy = verticalAccuracy;
    return self;
}
@end

CLLocationCoordinate2D CLLocationCoordinate2DMake(CLLocationDegrees latitude,
                                                  CLLocationDegrees longitude) {
    return {latitude, longitude};
}

BOOL CLLocationCoordinate2DIsValid(CLLocationCoordinate2D place) {
    return place.latitude >= -90 && place.latitude <= 90 && place.longitude >= -180 &&
           place.longitude <= 180;
}

@implementation PHObject
@synthesize localIdentifier = _localIdentifier;
- (instancetype)initWithLocal:(const std::string&)identifier {
    self = [super init];
    _localIdentifier = [stringOf(identifier) copy];
    return self;
}
- (void)dealloc {
    [_localIdentifier release];
    [super dealloc];
}
@end

@implementation PHFetchOptions
@synthesize sortDescriptors = _sortDescriptors;
- (void)dealloc {
    [_sortDescriptors release];
    [super dealloc];
}
@end

@implementation PHFetchResult
+ (instancetype)ofQuery:(Query)query {
    PHFetchResult* result = [[[self alloc] init] autorelease];
    result->_objects = [query() copy];
    result->_query = new Query(std::move(query));
    return result;
}
- (void)dealloc {
    [_objects release];
    delete static_cast<Query*>(_query);
    [super dealloc];
}
- (PHFetchResult*)again {
    return [PHFetchResult ofQuery:*static_cast<Query*>(_query)];
}
- (NSArray*)objects {
    return _objects;
}
- (NSUInteger)count {
    return [_objects count];
}
- (id)firstObject {
    return [_objects count] > 0 ? [_objects objectAtIndex:0] : nil;
}
- (id)objectAtIndex:(NSUInteger)index {
    return [_objects objectAtIndex:index];
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id*)buffer
                                    count:(NSUInteger)length {
    return [_objects countByEnumeratingWithState:state objects:buffer count:length];
}
@end

@implementation PHAsset
+ (instancetype)ofRow:(const Row&)row {
    PHAsset* asset = [[[self alloc] initWithLocal:row->identifier] autorelease];
    asset->_row = new Row(row);
    return asset;
}
- (void)dealloc {
    delete static_cast<Row*>(_row);
    [super dealloc];
}
- (const Row&)row {
    return *static_cast<Row*>(_row);
}
- (PHAssetMediaType)mediaType {
    return static_cast<PHAssetMediaType>([self row]->mediaType);
}
- (PHAssetMediaSubtype)mediaSubtypes {
    return static_cast<PHAssetMediaSubtype>([self row]->subtypes);
}
- (NSDate*)creationDate {
    return dateOf([self row]->created);
}
- (NSDate*)modificationDate {
    return dateOf([self row]->modified);
}
- (CLLocation*)location {
    const auto& place = [self row]->place;
    if (!place)
        return nil;
    return [[[CLLocation alloc]
        initWithCoordinate:CLLocationCoordinate2DMake(place->first, place->second)
                  altitude:99
        horizontalAccuracy:5
          verticalAccuracy:-1
                 timestamp:[NSDate date]] autorelease];
}
- (BOOL)representsBurst {
    return [self row]->isBurst;
}
- (BOOL)canPerformEditOperation:(PHAssetEditOperation)operation {
    return operation == PHAssetEditOperationDelete && [self row]->mayBeDeleted;
}

+ (PHFetchResult*)fetchAssetsWithOptions:(PHFetchOptions*)options {
    const std::shared_ptr<NSArray> order([[options sortDescriptors] copy],
                                         [](NSArray* array) { [array release]; });
    return [PHFetchResult ofQuery:[order] {
        NSMutableArray* assets = [NSMutableArray array];
        for (const Row& row : photos().rows())
            [assets addObject:[PHAsset ofRow:row]];
        return order ? [assets sortedArrayUsingDescriptors:order.get()] : assets;
    }];
}
+ (PHFetchResult*)fetchAssetsInAssetCollection:(PHAssetCollection*)collection
                                       options:(PHFetchOptions*)options {
    return [PHFetchResult
        ofQuery:[identifier = std::string([[collection localIdentifier] UTF8String])] {
            NSMutableArray* assets = [NSMutableArray array];
            const auto rows = photos().rows();
            for (const auto& album : photos().albums())
                if (album.identifier == identifier)
                    for (const std::string& member : album.assets)
                        for (const Row& row : rows)
                            if (row->identifier == member)
                                [assets addObject:[PHAsset ofRow:row]];
            return static_cast<NSArray*>(assets);
        }];
}
+ (PHFetchResult*)fetchAssetsWithLocalIdentifiers:(NSArray<NSString*>*)identifiers
                                          options:(PHFetchOptions*)options {
    return [PHFetchResult ofQuery:[wanted = setOf(identifiers)] { // in an order of its own
        NSMutableArray* assets = [NSMutableArray array];
        for (const Row& row : photos().rows())
            if (wanted.contains(row->identifier))
                [assets addObject:[PHAsset ofRow:row]];
        return static_cast<NSArray*>(assets);
    }];
}
@end

@interface PHCollection (StandIn)
+ (instancetype)ofAlbum:(const StandInPhotos::Album&)album;
@end

namespace {

using Wanted = std::function<bool(const StandInPhotos::Album&)>;

PHFetchResult* collections(Wanted wanted) {
    return [PHFetchResult ofQuery:[wanted = std::move(wanted)] {
        NSMutableArray* found = [NSMutableArray array];
        for (const auto& album : photos().albums())
            if (wanted(album))
                [found addObject:[album.isFolder ? [PHCollectionList class]
                                                 : [PHAssetCollection class] ofAlbum:album]];
        return static_cast<NSArray*>(found);
    }];
}

} // namespace

@implementation PHCollection
@synthesize localizedTitle = _localizedTitle;
+ (instancetype)ofAlbum:(const StandInPhotos::Album&)album {
    PHCollection* collection = [[[self alloc] initWithLocal:album.identifier] autorelease];
    collection->_localizedTitle = [stringOf(album.title) copy];
    return collection;
}
- (void)dealloc {
    [_localizedTitle release];
    [super dealloc];
}
- (StandInPhotos::Album)album {
    for (const auto& album : photos().albums())
        if (album.identifier == [[self localIdentifier] UTF8String])
            return album;
    return {};
}
+ (PHFetchResult*)fetchCollectionsInCollectionList:(PHCollectionList*)list
                                           options:(PHFetchOptions*)options {
    const auto members = [list album].assets;
    return collections([members](const auto& album) {
        return std::ranges::find(members, album.identifier) != members.end();
    });
}
+ (PHFetchResult*)fetchTopLevelUserCollectionsWithOptions:(PHFetchOptions*)options {
    return collections([](const auto& album) { return !album.isInFolder; });
}
@end

@implementation PHAssetCollection
- (PHAssetCollectionType)assetCollectionType {
    return PHAssetCollectionTypeAlbum;
}
- (PHAssetCollectionSubtype)assetCollectionSubtype {
    return PHAssetCollectionSubtypeAlbumRegular;
}
- (NSUInteger)estimatedAssetCount {
    const auto album = [self album];
    return album.isCounted ? album.assets.size() : static_cast<NSUInteger>(NSNotFound);
}
+ (PHFetchResult*)fetchAssetCollectionsWithLocalIdentifiers:(NSArray<NSString*>*)identifiers
                                                    options:(PHFetchOptions*)options {
    return collections([wanted = setOf(identifiers)](const auto& album) {
        return !album.isFolder && wanted.contains(album.identifier);
    });
}
+ (PHFetchResult*)fetchAssetCollectionsWithType:(PHAssetCollectionType)type
                                        subtype:(PHAssetCollectionSubtype)subtype
                                        options:(PHFetchOptions*)options {
    const bool isThere =
        type == PHAssetCollectionTypeAlbum &&
        (subtype == PHAssetCollectionSubtypeAny || subtype == PHAssetCollectionSubtypeAlbumRegular);
    return collections([isThere](const auto& album) { return isThere && !album.isFolder; });
}
@end

@implementation PHCollectionList
- (PHCollectionListType)collectionListType {
    return PHCollectionListTypeFolder;
}
+ (PHFetchResult*)fetchCollectionListsWithLocalIdentifiers:(NSArray<NSString*>*)identifiers
                                                   options:(PHFetchOptions*)options {
    return collections([wanted = setOf(identifiers)](const auto& album) {
        return album.isFolder && wanted.contains(album.identifier);
    });
}
+ (PHFetchResult*)fetchCollectionListsWithType:(PHCollectionListType)type
                                       subtype:(PHCollectionListSubtype)subtype
                                       options:(PHFetchOptions*)options {
    return collections(
        [type](const auto& album) { return album.isFolder && type == PHCollectionListTypeFolder; });
}
@end

@implementation PHAssetResource
+ (NSArray*)assetResourcesForAsset:(PHAsset*)asset {
    NSMutableArray* resources = [NSMutableArray array];
    for (const auto& resource : [asset row]->resources) {
        PHAssetResource* object = [[[self alloc] init] autorelease];
        object->_assetLocalIdentifier = [[asset localIdentifier] copy];
        object->_row = new File{[asset row] -> identifier, resource};
        [resources addObject:object];
    }
    return resources;
}
- (void)dealloc {
    [_assetLocalIdentifier release];
    delete static_cast<File*>(_row);
    [super dealloc];
}
- (const File&)file {
    return *static_cast<File*>(_row);
}
- (PHAssetResourceType)type {
    return static_cast<PHAssetResourceType>([self file].resource.type);
}
- (NSString*)assetLocalIdentifier {
    return _assetLocalIdentifier;
}
- (NSString*)originalFilename {
    return stringOf([self file].resource.name);
}
@end

@implementation PHAssetResourceRequestOptions
@synthesize networkAccessAllowed = _networkAccessAllowed;
@end

@implementation PHAssetResourceManager
+ (PHAssetResourceManager*)defaultManager {
    static PHAssetResourceManager* manager = [[self alloc] init];
    return manager;
}

- (PHAssetResourceDataRequestID)requestDataForAssetResource:(PHAssetResource*)resource
                                                    options:(PHAssetResourceRequestOptions*)options
                                        dataReceivedHandler:(void (^)(NSData*))handler
                                          completionHandler:(void (^)(NSError*))completionHandler {
    static std::atomic<int32_t> last = 0;
    const int32_t request = ++last;
    const bool mayUseNetwork = [options isNetworkAccessAllowed];
    void (^receive)(NSData*) = Block_copy(handler);
    answerLater(completionHandler, [=, file = [resource file]](void (^done)(NSError*)) {
        constexpr qsizetype chunk = 1000;
        NSError* error = obstacleTo(file, mayUseNetwork);
        const QByteArray& bytes = file.resource.bytes;
        for (qsizetype at = 0; !error && at <= bytes.size(); at += chunk) {
            const QByteArray part = bytes.mid(at, chunk); // the last may be empty
            receive([NSData dataWithBytes:part.constData()
                                   length:static_cast<NSUInteger>(part.size())]);
            photos().waitWhileHeld();
            const std::lock_guard lock(observersMutex);
            if (cancelled.contains(request))
                error = errorOf(NSCocoaErrorDomain, 3072);
        }
        done(error);
        Block_release(receive);
    });
    return request;
}

- (void)writeDataForAssetResource:(PHAssetResource*)resource
                           toFile:(NSURL*)fileURL
                          options:(PHAssetResourceRequestOptions*)options
                completionHandler:(void (^)(NSError*))completionHandler {
    const bool mayUseNetwork = [options isNetworkAccessAllowed];
    NSString* path = [[fileURL path] retain];
    answerLater(completionHandler, [=, file = [resource file]](void (^done)(NSError*)) {
        const QByteArray& bytes = file.resource.bytes;
        NSError* error = obstacleTo(file, mayUseNetwork);
        const auto write = [&](qsizetype size) {
            [[NSData dataWithBytes:bytes.constData()
                            length:static_cast<NSUInteger>(size)] writeToFile:path atomically:NO];
        };
        if (!error) {
            write(bytes.size() / 2);
            photos().waitWhileHeld();
            write(bytes.size());
        }
        done(error);
        if (photos().mood().answersTwice)
            done(errorOf(NSCocoaErrorDomain, 1));
        [path release];
    });
}

- (void)cancelDataRequest:(PHAssetResourceDataRequestID)request {
    const std::lock_guard lock(observersMutex);
    cancelled.insert(request);
}
@end

@implementation PHAssetChangeRequest
+ (void)deleteAssets:(id<NSFastEnumeration>)assets {
    for (PHAsset* asset in assets)
        deletions->push_back([[asset localIdentifier] UTF8String]);
}
@end

@implementation PHFetchResultChangeDetails
@synthesize fetchResultAfterChanges = _after;
+ (instancetype)from:(PHFetchResult*)before isIncremental:(BOOL)isIncremental {
    PHFetchResult* after = [before again];
    NSMutableArray *inserted = [NSMutableArray array], *removed = [NSMutableArray array],
                   *changed = [NSMutableArray array];
    NSMutableDictionary* old = [NSMutableDictionary dictionary];
    for (PHAsset* asset in before)
        [old setObject:asset forKey:[asset localIdentifier]];
    for (PHAsset* asset in after) {
        PHAsset* known = [old objectForKey:[asset localIdentifier]];
        if (!known)
            [inserted addObject:asset];
        else if ([known row] != [asset row])
            [changed addObject:asset];
        [old removeObjectForKey:[asset localIdentifier]];
    }
    [removed addObjectsFromArray:[old allValues]];
    if ([inserted count] + [removed count] + [changed count] == 0)
        return nil;
    PHFetchResultChangeDetails* details = [[[self alloc] init] autorelease];
    details->_after = [after retain];
    if (isIncremental) {
        details->_inserted = [inserted retain];
        details->_removed = [removed retain];
        details->_changed = [changed retain];
    }
    return details;
}
- (void)dealloc {
    [_after release];
    [_inserted release];
    [_removed release];
    [_changed release];
    [super dealloc];
}
- (BOOL)hasIncrementalChanges {
    return _inserted != nil;
}
- (NSArray*)insertedObjects {
    return _inserted;
}
- (NSArray*)removedObjects {
    return _removed;
}
- (NSArray*)changedObjects {
    return _changed;
}
@end

@implementation PHChange
- (instancetype)initIncremental:(BOOL)isIncremental {
    self = [super init];
    _isIncremental = isIncremental;
    return self;
}
- (PHFetchResultChangeDetails*)changeDetailsForFetchResult:(PHFetchResult*)object {
    return [PHFetchResultChangeDetails from:object isIncremental:_isIncremental];
}
@end

@implementation PHPhotoLibrary
+ (PHPhotoLibrary*)sharedPhotoLibrary {
    static PHPhotoLibrary* library = [[self alloc] init];
    return library;
}
+ (PHAuthorizationStatus)authorizationStatusForAccessLevel:(PHAccessLevel)level {
    return static_cast<PHAuthorizationStatus>(photos().mood().authorization);
}
+ (void)requestAuthorizationForAccessLevel:(PHAccessLevel)level
                                   handler:(void (^)(PHAuthorizationStatus))handler {
    answerLater(handler, [level](void (^done)(PHAuthorizationStatus)) {
        photos().waitWhileHeld();
        done([PHPhotoLibrary authorizationStatusForAccessLevel:level]);
    });
}
- (void)performChanges:(dispatch_block_t)changeBlock
     completionHandler:(void (^)(BOOL, NSError*))completionHandler {
    dispatch_block_t change = Block_copy(changeBlock);
    answerLater(completionHandler, [change](void (^done)(BOOL, NSError*)) {
        std::vector<std::string> wanted;
        deletions = &wanted;
        change();
        deletions = nullptr;
        photos().waitWhileHeld();
        if (photos().mood().agreesToDeletion()) {
            for (const std::string& identifier : wanted)
                photos().removeAsset(identifier);
            done(YES, nil);
        } else {
            done(NO, errorOf(@"PHPhotosErrorDomain", 3072));
        }
        Block_release(change);
    });
}
- (void)registerChangeObserver:(id<PHPhotoLibraryChangeObserver>)observer {
    const std::lock_guard lock(observersMutex);
    observers.push_back(observer);
}
- (void)unregisterChangeObserver:(id<PHPhotoLibraryChangeObserver>)observer {
    const std::lock_guard lock(observersMutex);
    std::erase(observers, observer);
}
@end

void quorvane::test::tellOfChange() {
    photos().post([] {
        @autoreleasepool {
            NSMutableArray* told = [NSMutableArray array]; // a notification keeps its receiver
            {
                const std::lock_guard lock(observersMutex);
                for (const auto& observer : observers)
                    [told addObject:observer];
            }
            photos().waitWhileHeld();
            PHChange* change =
                [[[PHChange alloc] initIncremental:photos().mood().isIncremental] autorelease];
            for (id<PHPhotoLibraryChangeObserver> observer in told)
                [observer photoLibraryDidChange:change];
        }
    });
}
