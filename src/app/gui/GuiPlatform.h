#pragma once

#ifdef __APPLE__
#include "app/gui/macos/MacGui.h"
#else
#include "app/gui/linux/LinuxGui.h"
#endif

namespace quorvane {

/// What the program with a window has of its platform: here it is chosen.
#ifdef __APPLE__
using GuiPlatform = MacGui;
#else
using GuiPlatform = LinuxGui;
#endif

} // namespace quorvane
