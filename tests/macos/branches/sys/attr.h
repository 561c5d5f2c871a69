#pragma once

// As the manual page getattrlist(2) of macOS describes it.
#include <cstddef>

struct attrlist {
    unsigned short bitmapcount, reserved;
    unsigned int commonattr, volattr, dirattr, fileattr, forkattr;
};
#define ATTR_BIT_MAP_COUNT 5
#define ATTR_CMN_CRTIME 0x00000200
extern "C" int setattrlist(const char* path, void* list, void* buffer, size_t size, unsigned int);
