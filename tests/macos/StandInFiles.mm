#include "macos/StandInParts.h"

#include <set>

using namespace quorvane::test;

namespace {

/// One file of one asset.
struct File {
    std::string asset;
    StandInPhotos::Resource resource;
};

std::mutex cancelledMutex;
std::set<int32_t> cancelled;

NSError* obstacleTo(const File& file, bool mayUseNetwork) {
    const auto mood = photos().mood();
    if (file.resource.isInCloud && !(mayUseNetwork && mood.isCloudReachable))
        return errorOf(@"PHPhotosErrorDomain", 3164);
    return mood.diskIsFull ? errorOf(NSCocoaErrorDomain, NSFileWriteOutOfSpaceError) : nil;
}

} // namespace

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
            const std::lock_guard lock(cancelledMutex);
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
    const std::lock_guard lock(cancelledMutex);
    cancelled.insert(request);
}
@end
