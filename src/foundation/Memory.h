#pragma once

namespace quorvane {

/// Lets all threads allocate from one arena. With one for each of them, a run that passes records
/// between its threads scatters what it frees, and grows with every picture it has handled. At the
/// beginning of main, before any thread.
void shareOneArena() noexcept;

} // namespace quorvane
