#pragma once

#include "foundation/Date.h"

#include <filesystem>
#include <optional>

namespace quorvane {

/// When the file was saved: its modification time. The birth time of a staged copy says only when
/// it was copied, so it never counts. None when the file cannot be looked at. Any thread.
std::optional<Date> readFileCreationDate(const std::filesystem::path& file) noexcept;

/// Gives the file this date, as far as the system lets one: its modification time, and on a Mac
/// its creation time.
void setFileDates(const std::filesystem::path& file, Date date) noexcept;

} // namespace quorvane
