#pragma once

namespace quorvane {

/// What both programs ask of the system before anything else: at the beginning of main, before any
/// thread.
///
/// - What is created from now on is the person's own: nobody else may read it.
/// - The three standard streams are open, so that no file of ours takes the number of one.
/// - A reader that went away is an error of the write, not the end of the process.
/// - And what `system::prepareProcess` says.
void prepareProcess() noexcept;

} // namespace quorvane
