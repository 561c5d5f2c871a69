#pragma once

struct stat;

namespace quorvane {

/// True when some process has the regular file `name` in the folder `folder` (a descriptor) open
/// for writing, so that it may not be whole yet. Where the system does not tell, a file that
/// changed in the last seconds counts as one. Looks only at files that changed within a day.
bool isOpenForWriting(int folder, const char* name, const struct stat& status);

} // namespace quorvane
