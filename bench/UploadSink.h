#pragma once

namespace quorvane::bench {

/// Serves HTTP on a free port of 127.0.0.1, prints the port and answers every request with a
/// token. Bodies are thrown away inside the system, so that whoever sends sets the pace. Never
/// returns.
[[noreturn]] void runUploadSink();

} // namespace quorvane::bench
