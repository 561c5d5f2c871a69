#include "bench/Parts.h"
#include "foundation/Log.h"
#include "library/FileExport.h"
#include "library/PhotoLibrary.h"
#include "metadata/ImageMetadata.h"
#include "metadata/MediaMetadataService.h"
#include "metadata/movie/MovieMetadata.h"

#include <cstdio>

#include <fcntl.h>

namespace quorvane::bench {

namespace {

class StandardError final : public Log {
  public:
    void log(const QString& message) override {
        std::fprintf(stderr, "%s\n", qUtf8Printable(message));
    }
};

SourceContent contentOf(const std::filesystem::path& file) {
    return readContent(openOriginal(file), file, {});
}

} // namespace

int stamp(const QStringList& words) {
    StandardError log;
    const Date date{std::chrono::seconds(words[0].toLongLong())};
    int failures = 0;
    for (const QString& file : words.mid(1)) {
        const auto path = pathFrom(file);
        const bool isMovie = isVideoExtension(file.section(u'.', -1).toLower());
        const MetadataResult result = isMovie ? enrichVideoMetadata(path, date, log)
                                              : enrichImageMetadata(path, date, std::nullopt, log);
        if (result.which == MetadataResult::Case::success)
            continue;
        ++failures;
        log.log(file + QStringLiteral(": ") + result.message);
    }
    return failures == 0 ? 0 : 1;
}

int hash(const QStringList& words) {
    const SourceContent content = contentOf(pathFrom(words[0]));
    std::printf("%s %lld\n", qUtf8Printable(content.sha256),
                static_cast<long long>(content.version.size));
    return 0;
}

int copy(const QStringList& words) {
    const std::filesystem::path target = pathFrom(words[1]);
    std::filesystem::create_directories(target);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(pathFrom(words[0]))) {
        if (!entry.is_regular_file())
            continue;
        const std::filesystem::path copied = target / entry.path().filename();
        std::filesystem::copy_file(entry.path(), copied);
        flushFile(openFile(copied, O_RDWR).get(), copied);
        if (contentOf(entry.path()).sha256 != contentOf(copied).sha256)
            throw Error(QStringLiteral("The copy differs: ") + pathText(copied));
    }
    return 0;
}

} // namespace quorvane::bench
