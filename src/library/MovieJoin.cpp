#include "library/MovieJoin.h"

#include "metadata/FileDates.h"
#include "metadata/MotionPhoto.h"
#include "metadata/movie/MoviePatch.h"

#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace quorvane {

namespace {

/// A hidden file beside the staged ones, which the next run removes if this one dies.
class PassingFile {
  public:
    explicit PassingFile(std::filesystem::path path) : path_(std::move(path)) {
        ::unlink(path_.c_str());
    }
    ~PassingFile() { ::unlink(path_.c_str()); }
    PassingFile(const PassingFile&) = delete;
    PassingFile& operator=(const PassingFile&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

} // namespace

RecordSource::Movie joinMovie(PhotoLibrary& library, const PhotoAssetResource& movie,
                              const std::filesystem::path& still, Date date,
                              const std::stop_token& stop) {
    const PassingFile copy(still.parent_path() / ".movie.tmp");
    const PassingFile joined(still.parent_path() / ".joined.tmp");
    const SourceContent content = library.writeData(movie, copy.path(), stop);
    if (!patchMP4CreationDate(copy.path(), date, {.stop = stop}))
        throw Error(QStringLiteral("videoya tarih yazılamadı"));
    motion::join(still, copy.path(), joined.path(), stop);
    if (::rename(joined.path().c_str(), still.c_str()) != 0)
        throw FileError(QStringLiteral("Dosya değiştirilemedi"), still, errno);
    setFileDates(still, date);
    return {content.sha256, content.version};
}

} // namespace quorvane
