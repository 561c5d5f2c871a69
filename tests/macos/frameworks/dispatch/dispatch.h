#pragma once

// The part of libdispatch that the adapters use, as its public documentation describes it.
#include <stdint.h>

typedef struct dispatch_queue_s* dispatch_queue_t;
enum { QOS_CLASS_UTILITY = 0x11 };

#ifdef __cplusplus
extern "C" {
#endif
dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t flags);
#ifdef __cplusplus
}
#endif
