// Compiled, never linked: what is chosen on a Mac.
#include "app/LibraryHost.h"
#include "app/gui/AppDelegate.h"
#include "app/gui/SystemDialogs.h"
#include "google/CurlHttpClient.h"
#include "ui/window/MenuBarController.h"

#define __APPLE__ 1 // NOLINT(bugprone-reserved-identifier)
#include "app/gui/QuorvaneApp.h"

static_assert(std::is_same_v<quorvane::PlatformPorts, quorvane::MacPorts>);
static_assert(std::is_same_v<quorvane::GuiPlatform, quorvane::MacGui>);
