#pragma once

#include "metadata/exif/ExifBlock.h"

#include <filesystem>

namespace quorvane {

/// The date fields of a camera's own format (CR2, CR3, NEF, ARW, RAF, ORF, RW2); the file is never
/// written. Empty when it states none or is damaged. Throws what is the system's fault
/// (`isSystems`). One file at a time, whatever the thread.
exif::Dates readRawDates(const std::filesystem::path& file);

} // namespace quorvane
