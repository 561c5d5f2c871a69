#pragma once

namespace quorvane {

/// What both programs ask of the system before anything else: at the beginning of main, before any
/// thread.
///
/// - What is created from now on is the person's own: nobody else may read it.
/// - The three standard streams are open, so that no file of ours takes the number of one.
/// - A reader that went away is an error of the write, not the end of the process.
/// - All threads allocate from one arena. With one for each of them, a run that passes records
///   between its threads scatters what it frees, and grows with every picture it has handled.
void prepareProcess() noexcept;

} // namespace quorvane
