#pragma once

#include "foundation/Date.h"
#include "foundation/Log.h"
#include "metadata/MetadataTypes.h"

#include <filesystem>
#include <optional>
#include <stop_token>

namespace quorvane {

/// The capture date an image states: EXIF DateTimeOriginal, EXIF DateTimeDigitized, TIFF DateTime,
/// the first that is present, read in the zone that it states, else as this computer's local time.
/// None when there is none, when it does not parse or when the file is no image of a known kind.
/// Throws `Cancelled`, and what is the system's fault (`isSystems`). Any thread.
std::optional<Date> readExistingImageDate(const std::filesystem::path& file,
                                          const std::stop_token& stop = {});

/// Writes `targetDate` into the three date fields and, when the asset has a location and the
/// container has room for it, a GPS block; zone and fraction fields that are there are kept true,
/// every other property and the coded image data stay as they are. An Exif block that nobody can
/// read is replaced. The file is replaced in one step or left as it was, and then bears
/// `targetDate` as its modification time. The same file, date and location always give the same
/// bytes. Recognises the container by its content. With `Effect::none` nothing is written, and the
/// answer is what it would have been. Throws `Cancelled`, and what is the system's fault
/// (`isSystems`). Any thread, one call per file at a time.
MetadataResult enrichImageMetadata(const std::filesystem::path& file, Date targetDate,
                                   const std::optional<AssetFacts>& asset, Log& log,
                                   Effect effect = Effect::write, const std::stop_token& stop = {});

/// Removes the temporary files that a rewrite cut short left in `folder`, and says how many. Not
/// to be called while files of that folder are being rewritten.
int removeLeftoverTemporaries(const std::filesystem::path& folder) noexcept;

} // namespace quorvane
