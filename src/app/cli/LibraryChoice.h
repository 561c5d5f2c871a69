#pragma once

#include "app/Composition.h"
#include "foundation/CommandLine.h"

#include <filesystem>
#include <optional>

namespace quorvane::cli {

/// The library to back up: the one named, else the remembered one, else the first Photos bundle in
/// the Pictures folder. Throws `Error` when there is none or it is gone.
std::filesystem::path chooseLibrary(const std::optional<QString>& named, const CoreServices& core);

/// What this call chooses for the library, on top of what is remembered for it. Throws `Error`, and
/// `UsageError` for what its kind of library does not know.
void applyChoices(const Arguments& arguments, LibraryAt& library);
/// New items go into one target album, or the library's albums are mirrored. Throws `Error`.
void requireOneUseOfAlbums(const LibraryChoices& choices, const GoogleAlbumManager& albums);
/// The options that say so.
std::vector<OptionSpec> choiceOptions();

/// Makes it the library of later runs, with its choices; call it once the library has proved
/// readable.
void rememberLibrary(const SourceServices& library, Preferences& preferences);

/// The state of the remembered library, which may be away, for this account; before any library was
/// chosen that of the first one. None when there is none yet.
std::optional<StatePlace> rememberedState(const CoreServices& core, const AccountIdentity& account);

/// Makes the album named by identifier or title the source of this run. Throws `Error` when there
/// is none, or several of that title.
void chooseSourceAlbum(const QString& idOrTitle, PhotoAlbumService& albums);

/// `GoogleAlbumManager::listAlbums`, for those who cannot do with a part of the list: throws
/// `Error` where it is not whole, unless only the permission to read is missing.
std::vector<GoogleAlbum> listedAlbums(GoogleAlbumManager& albums, const std::stop_token& stop);

/// Makes the Google Photos album named by identifier or title the target of this run.
void chooseTargetAlbum(const QString& idOrTitle, GoogleAlbumManager& albums,
                       Preferences& preferences, std::stop_token stop);

} // namespace quorvane::cli
