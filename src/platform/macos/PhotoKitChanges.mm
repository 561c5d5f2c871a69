#include "platform/macos/PhotoKitChanges.h"

#include "library/LiveFetches.h"
#include "platform/macos/PhotoKitTranslation.h"

namespace quorvane {

namespace {

using namespace photokit;

std::vector<PhotoAsset> assetsOf(NSArray<PHAsset*>* objects) {
    std::vector<PhotoAsset> assets;
    for (PHAsset* object in objects)
        assets.push_back(assetOf(object));
    return assets;
}

class PhotoKitChange final : public LibraryChange {
  public:
    explicit PhotoKitChange(PHChange* change) : change_(change) {}

    std::optional<FetchResultChangeDetails>
    changeDetails(const AssetFetchResult& before) const override {
        @autoreleasepool {
            PHFetchResult<PHAsset*>* fetched = fetchedOf(before);
            PHFetchResultChangeDetails<PHAsset*>* details =
                fetched ? [change_ changeDetailsForFetchResult:fetched] : nil;
            if (!details)
                return std::nullopt;
            const AssetFetchResult after = resultOf([details fetchResultAfterChanges]);
            // After many changes at once PhotoKit only says what there is now.
            if (![details hasIncrementalChanges])
                return differenceOf(*before, after);
            return FetchResultChangeDetails{after, assetsOf([details insertedObjects]),
                                            assetsOf([details removedObjects]),
                                            assetsOf([details changedObjects])};
        }
    }

  private:
    PHChange* change_; ///< alive during the notification
};

} // namespace

} // namespace quorvane

@interface QuorvaneChangeObserver : NSObject <PHPhotoLibraryChangeObserver> {
  @private
    std::shared_ptr<quorvane::PhotoKitChanges::Receiver>* receiver;
}
- (instancetype)initWithReceiver:(std::shared_ptr<quorvane::PhotoKitChanges::Receiver>)shared;
@end

@implementation QuorvaneChangeObserver

- (instancetype)initWithReceiver:(std::shared_ptr<quorvane::PhotoKitChanges::Receiver>)shared {
    self = [super init];
    if (self)
        receiver = new std::shared_ptr<quorvane::PhotoKitChanges::Receiver>(std::move(shared));
    return self;
}

- (void)dealloc {
    delete receiver;
    [super dealloc];
}

- (void)photoLibraryDidChange:(PHChange*)change {
    @autoreleasepool {
        (*receiver)->receive(quorvane::PhotoKitChange(change));
    }
}

@end

namespace quorvane {

PhotoKitChanges::PhotoKitChanges(Log& log) : receiver_(std::make_shared<Receiver>(log)) {}

PhotoKitChanges::~PhotoKitChanges() {
    unregister();
}

void PhotoKitChanges::observe(LibraryChangeObserver& observer) {
    const std::lock_guard lock(mutex_);
    receiver_->set(&observer);
    if (registered_)
        return;
    @autoreleasepool {
        auto* object = [[QuorvaneChangeObserver alloc] initWithReceiver:receiver_];
        [[PHPhotoLibrary sharedPhotoLibrary] registerChangeObserver:object];
        registered_ = object;
    }
}

void PhotoKitChanges::unobserve(LibraryChangeObserver& observer) {
    const std::lock_guard lock(mutex_);
    if (receiver_->isFor(observer))
        unregister();
}

void PhotoKitChanges::unregister() {
    receiver_->set(nullptr);
    if (!registered_)
        return;
    @autoreleasepool {
        auto* object = static_cast<QuorvaneChangeObserver*>(std::exchange(registered_, nullptr));
        [[PHPhotoLibrary sharedPhotoLibrary] unregisterChangeObserver:object];
        [object release];
    }
}

} // namespace quorvane
