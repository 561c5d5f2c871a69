#pragma once

#include <functional>

namespace quorvane {

/// Queues `work` on the main thread's event loop and returns at once. Calls keep their order.
void onMainThread(std::function<void()> work);

/// True on the thread that runs the application object.
bool isMainThread();

} // namespace quorvane
