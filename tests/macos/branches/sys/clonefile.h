#pragma once

// As the manual page clonefile(2) of macOS describes it.
extern "C" int fclonefileat(int source, int folder, const char* destination, unsigned int flags);
