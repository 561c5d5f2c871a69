#pragma once

// The part of CoreFoundation and FSEvents that the adapters use, as their public documentation
// describes it.
#include <dispatch/dispatch.h>
#include <stddef.h>

typedef const void* CFTypeRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef double CFTimeInterval;
typedef int OSStatus;
typedef unsigned char Boolean;

typedef struct __FSEventStream* FSEventStreamRef;
typedef const struct __FSEventStream* ConstFSEventStreamRef;
typedef uint32_t FSEventStreamCreateFlags;
typedef uint32_t FSEventStreamEventFlags;
typedef uint64_t FSEventStreamEventId;
enum {
    kFSEventStreamCreateFlagNoDefer = 0x00000002,
    kFSEventStreamCreateFlagWatchRoot = 0x00000004,
};
static const FSEventStreamEventId kFSEventStreamEventIdSinceNow = 0xFFFFFFFFFFFFFFFFULL;

struct FSEventStreamContext {
    long version;
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
};
typedef struct FSEventStreamContext FSEventStreamContext;
typedef void (*FSEventStreamCallback)(ConstFSEventStreamRef streamRef, void* clientCallBackInfo,
                                      size_t numEvents, void* eventPaths,
                                      const FSEventStreamEventFlags* eventFlags,
                                      const FSEventStreamEventId* eventIds);

#ifdef __cplusplus
extern "C" {
#endif
FSEventStreamRef FSEventStreamCreate(CFAllocatorRef allocator, FSEventStreamCallback callback,
                                     FSEventStreamContext* context, CFArrayRef pathsToWatch,
                                     FSEventStreamEventId sinceWhen, CFTimeInterval latency,
                                     FSEventStreamCreateFlags flags);
void FSEventStreamSetDispatchQueue(FSEventStreamRef streamRef, dispatch_queue_t q);
Boolean FSEventStreamStart(FSEventStreamRef streamRef);
void FSEventStreamStop(FSEventStreamRef streamRef);
void FSEventStreamInvalidate(FSEventStreamRef streamRef);
void FSEventStreamRelease(FSEventStreamRef streamRef);
#ifdef __cplusplus
}
#endif
