#include "foundation/Memory.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace quorvane {

void shareOneArena() noexcept {
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 1);
#endif
}

} // namespace quorvane
