#include "platform/macos/PhotoKitResources.h"

#include "foundation/File.h"
#include "library/FileExport.h"
#include "library/LocalIdentifier.h"
#include "platform/macos/Answer.h"
#include "platform/macos/PhotoKitTranslation.h"

#include <cerrno>

namespace quorvane::photokit {

namespace {

/// How a transfer ended.
struct Ending {
    bool succeeded = false;
    bool diskIsFull = false;
    QString reason; ///< of a failure

    static Ending of(NSError* error) {
        if (!error)
            return {true, false, {}};
        return {false, isDiskFull(error), reasonOf(error)};
    }

  private:
    static bool isDiskFull(NSError* error) {
        for (; error; error = [[error userInfo] objectForKey:NSUnderlyingErrorKey])
            if (([[error domain] isEqualToString:NSCocoaErrorDomain] &&
                 [error code] == NSFileWriteOutOfSpaceError) ||
                ([[error domain] isEqualToString:NSPOSIXErrorDomain] && [error code] == ENOSPC))
                return true;
        return false;
    }
};

/// One reading. Closed when its reader returns: what PhotoKit still sends then is dropped.
struct Reading {
    explicit Reading(const std::function<void(ByteView)>& reader) : take(&reader) {}

    void receive(NSData* data) {
        const auto reader = take.lock();
        if (*reader)
            (**reader)(ByteView(static_cast<const std::uint8_t*>([data bytes]), [data length]));
    }
    void close() { *take.lock() = nullptr; }

    Answer<Ending> ending;

  private:
    Guarded<const std::function<void(ByteView)>*> take; ///< locked while the reader takes
};

QString nameOf(PHAssetResource* resource) {
    return resourceFilename(textOf([resource originalFilename]),
                            textOf([resource assetLocalIdentifier]).section(u'/', 0, 0));
}

std::filesystem::path placeOf(PHAssetResource* resource) {
    return pathFrom(QStringLiteral("%1/%2/%3")
                        .arg(textOf([resource assetLocalIdentifier]))
                        .arg([resource type])
                        .arg(nameOf(resource)));
}

QString assetAt(const std::filesystem::path& place) {
    return pathText(place).section(u'/', 0, 2);
}

PHAssetResource* find(const PhotoAssetResource& wanted) {
    if (PHAsset* asset = findAsset(assetAt(wanted.location)))
        for (PHAssetResource* resource in [PHAssetResource assetResourcesForAsset:asset])
            if (placeOf(resource) == wanted.location)
                return resource;
    throw PhotoLibraryError(
        QStringLiteral("%1 artık Fotoğraflar arşivinde yok").arg(wanted.originalFilename));
}

PHAssetResourceRequestOptions* withNetwork() {
    auto* options = [[[PHAssetResourceRequestOptions alloc] init] autorelease];
    [options setNetworkAccessAllowed:YES];
    return options;
}

void requireSuccess(const std::optional<Ending>& ending, const PhotoAssetResource& resource,
                    const std::filesystem::path& file = {}) {
    if (!ending)
        throw Cancelled();
    if (ending->diskIsFull)
        throw FileError(QStringLiteral("Dosya kopyalanamadı"), file, ENOSPC);
    if (!ending->succeeded)
        throw PhotoLibraryError(
            QStringLiteral("%1 adlı özgün dosya Fotoğraflar arşivinden alınamadı (%2)")
                .arg(resource.originalFilename, ending->reason));
}

} // namespace

std::vector<PhotoAssetResource> resourcesOf(const QString& localIdentifier) {
    @autoreleasepool {
        std::vector<PhotoAssetResource> resources;
        if (PHAsset* asset = findAsset(localIdentifier))
            for (PHAssetResource* resource in [PHAssetResource assetResourcesForAsset:asset])
                resources.push_back({static_cast<AssetResourceType>([resource type]),
                                     nameOf(resource), std::nullopt, placeOf(resource)});
        return resources;
    }
}

std::optional<FileVersion> versionOf(const PhotoAssetResource& resource) {
    @autoreleasepool {
        PHAsset* asset = findAsset(assetAt(resource.location));
        if (!asset)
            return std::nullopt;
        const auto changed = assetOf(asset).modificationDate.value_or(Date()).time_since_epoch();
        const std::int64_t nanoseconds = std::chrono::nanoseconds(changed).count();
        return FileVersion{0, nanoseconds, nanoseconds, 0};
    }
}

void download(const PhotoAssetResource& resource, const std::filesystem::path& file,
              const std::stop_token& stop) {
    const auto answer = std::make_shared<Answer<Ending>>();
    @autoreleasepool {
        const std::filesystem::path written = file;
        [[PHAssetResourceManager defaultManager]
            writeDataForAssetResource:find(resource)
                               toFile:[NSURL fileURLWithPath:stringOf(pathText(file))]
                              options:withNetwork()
                    completionHandler:^(NSError* error) {
                      std::error_code ignored;
                      if (!answer->give(Ending::of(error)))
                          std::filesystem::remove(written, ignored);
                    }];
    }
    requireSuccess(answer->wait(stop), resource, file);
}

void read(const PhotoAssetResource& resource, const std::function<void(ByteView)>& take,
          const std::stop_token& stop) {
    const auto reading = std::make_shared<Reading>(take);
    @autoreleasepool {
        PHAssetResourceManager* manager = [PHAssetResourceManager defaultManager];
        const PHAssetResourceDataRequestID request =
            [manager requestDataForAssetResource:find(resource)
                options:withNetwork()
                dataReceivedHandler:^(NSData* data) {
                  reading->receive(data);
                }
                completionHandler:^(NSError* error) {
                  reading->ending.give(Ending::of(error));
                }];
        const std::optional<Ending> ending = reading->ending.wait(stop);
        reading->close();
        if (!ending)
            [manager cancelDataRequest:request];
        requireSuccess(ending, resource);
    }
}

} // namespace quorvane::photokit
