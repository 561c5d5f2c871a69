#pragma once

#include "foundation/ByteReader.h"
#include "library/PhotoLibrary.h"

#include <functional>

/// The files of an asset, as PhotoKit hands them out: what lies in iCloud only is fetched from
/// there. A resource's place is "<UUID>/L0/001/<type>/<file name>". Any thread.
namespace quorvane::photokit {

/// In PhotoKit's order; empty when the asset is not there. PhotoKit tells no sizes.
std::vector<PhotoAssetResource> resourcesOf(const QString& localIdentifier);

/// When the asset was changed last, in the place of what a file system would say; none when it is
/// not there. PhotoKit tells neither size nor inode: they are 0.
std::optional<FileVersion> versionOf(const PhotoAssetResource& resource);

/// Has PhotoKit write the resource to `file`, which must not exist. Blocks. Throws
/// `PhotoLibraryError`, `FileError` for a full disk, or `Cancelled`: PhotoKit cannot be stopped
/// then, and what it writes after that is removed when it is done.
void download(const PhotoAssetResource& resource, const std::filesystem::path& file,
              const std::stop_token& stop);

/// Hands the resource's bytes to `take`, which does not throw, in their order and on PhotoKit's
/// threads. Blocks; after the return `take` is not called any more. Throws as `download`; a stop
/// ends the transfer.
void read(const PhotoAssetResource& resource, const std::function<void(ByteView)>& take,
          const std::stop_token& stop);

} // namespace quorvane::photokit
