#include "ScratchFile.h"
#include "platform/bundle/PhotosDatabase.h"
#include "platform/bundle/SmartAlbums.h"

using namespace quorvane;

/// Any file is refused with an error of ours, or lists what it holds in good time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::ScratchFile file("Photos.sqlite");
    file.write({data, size});
    try {
        PhotosDatabase database(file.path());
        database.libraryUuid();
        for (const PhotosAlbum& album : database.albums())
            database.assetsOf(album);
        for (const SmartAlbum& album : smartAlbums())
            database.counts({album.condition});
        std::int64_t after = 0;
        for (auto some = database.originals(after); !some.empty(); some = database.originals(after))
            for (const PhotosAssetFiles& original : some) {
                database.filesOf(original.uuid);
                database.captionOf(original.uuid);
            }
    } catch (const Error&) {
        return 0; // refused
    }
    return 0;
}
