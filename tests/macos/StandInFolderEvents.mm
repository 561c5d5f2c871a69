#include "macos/StandInSystem.h"

#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

#include <set>

using quorvane::test::StandInSystem;

struct __FSEventStream {
    FSEventStreamCallback callback;
    FSEventStreamContext context;
    bool isStarted = false;
};

namespace {

std::set<FSEventStreamRef> streams;

} // namespace

dispatch_queue_t dispatch_get_global_queue(intptr_t, uintptr_t) {
    return nullptr;
}

FSEventStreamRef FSEventStreamCreate(CFAllocatorRef, FSEventStreamCallback callback,
                                     FSEventStreamContext* context, CFArrayRef paths,
                                     FSEventStreamEventId, CFTimeInterval,
                                     FSEventStreamCreateFlags) {
    StandInSystem::shared().watchedTrees.clear();
    for (NSString* path in static_cast<NSArray*>(
             const_cast<void*>(static_cast<const void*>(paths))))
        StandInSystem::shared().watchedTrees.push_back([path UTF8String]);
    return *streams.insert(new __FSEventStream{callback, *context}).first;
}

void FSEventStreamSetDispatchQueue(FSEventStreamRef, dispatch_queue_t) {}

Boolean FSEventStreamStart(FSEventStreamRef stream) {
    return stream->isStarted = true;
}

void FSEventStreamStop(FSEventStreamRef stream) {
    stream->isStarted = false;
}

void FSEventStreamInvalidate(FSEventStreamRef) {}

void FSEventStreamRelease(FSEventStreamRef stream) {
    streams.erase(stream);
    stream->context.release(stream->context.info);
    delete stream;
}

void StandInSystem::tellOfFolders() {
    for (FSEventStreamRef stream : streams)
        if (stream->isStarted)
            stream->callback(stream, stream->context.info, 0, nullptr, nullptr, nullptr);
}
