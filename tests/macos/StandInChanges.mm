#include "macos/StandInParts.h"

using namespace quorvane::test;

namespace {

thread_local std::vector<std::string>* deletions = nullptr;
std::mutex observersMutex;
std::vector<id<PHPhotoLibraryChangeObserver>> observers;

} // namespace

/// An error that has nothing to say.
@interface SilentError : NSError
@end
@implementation SilentError
- (NSString*)localizedDescription {
    return nil;
}
@end

NSError* quorvane::test::errorOf(NSString* domain, NSInteger code) {
    if (!photos().mood().describesErrors)
        return [SilentError errorWithDomain:domain code:code userInfo:nil];
    return [NSError errorWithDomain:domain
                               code:code
                           userInfo:@{NSLocalizedDescriptionKey : @"It could not\nbe done."}];
}

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
