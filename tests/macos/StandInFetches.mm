#include "macos/StandInParts.h"

#include <algorithm>
#include <set>

using namespace quorvane::test;

namespace {

using Row = StandInPhotos::Row;
using Query = std::function<NSArray*()>;

NSDate* dateOf(const std::optional<double>& seconds) {
    return seconds ? [NSDate dateWithTimeIntervalSince1970:*seconds] : nil;
}

std::set<std::string> setOf(NSArray<NSString*>* strings) {
    std::set<std::string> texts;
    for (NSString* string in strings)
        texts.insert([string UTF8String]);
    return texts;
}

} // namespace

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
