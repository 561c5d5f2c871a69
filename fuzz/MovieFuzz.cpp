#include "foundation/File.h"
#include "metadata/movie/MovieDates.h"
#include "metadata/movie/MoviePatch.h"

#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>

using namespace quorvane;

namespace {

const MovieLimits limits{.nesting = 8, .boxes = 200, .textBytes = 1024};
constexpr Date target{std::chrono::milliseconds(1614987000000)};

bool patch(const std::filesystem::path& path) {
    try {
        patchMP4CreationDate(path, target, limits);
        return true;
    } catch (const Error&) {
        return false;
    }
}

} // namespace

/// Any movie is read without a fault. Patching it keeps its length, does nothing more the second
/// time, and changes nothing when it is refused.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FileDescriptor file(::memfd_create("movie", MFD_CLOEXEC));
    const std::filesystem::path path = "/proc/self/fd/" + std::to_string(file.get());
    writeAll(file.get(), {data, size}, path);
    const auto content = [&] { return MovieFile(path, O_RDONLY).read(0, size + 1); };

    const QByteArray before = content();
    readExistingVideoDate(path, limits);
    const bool patched = patch(path);
    const QByteArray after = content();
    if (after.size() != before.size() || (!patched && after != before))
        std::abort();
    if (patched && (!patch(path) || content() != after))
        std::abort();
    readExistingVideoDate(path, limits);
    return 0;
}
