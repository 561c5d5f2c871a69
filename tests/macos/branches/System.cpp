// Compiled, never linked: the Mac's half of a file of which only the other half runs here. Names
// and numbers are those of macOS's manual pages.
#include "foundation/File.h"

#include <cstdlib>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#define st_mtimespec st_mtim
#define st_ctimespec st_ctim
#define F_FULLFSYNC 51
#define RENAME_EXCL 4
#define SO_NOSIGPIPE 0x1022
#define SO_NWRITE 0x1024
extern "C" int renameatx_np(int, const char*, int, const char*, unsigned int);
extern "C" int lchflags(const char*, unsigned int);

#define __APPLE__ 1              // NOLINT(bugprone-reserved-identifier)
#include "foundation/System.cpp" // NOLINT(bugprone-suspicious-include)
