#include "metadata/movie/MovieMetadata.h"

namespace quorvane {

MetadataResult enrichVideoMetadata(const std::filesystem::path& file, Date targetDate, Log& log,
                                   Effect effect, std::stop_token stop) {
    try {
        const MovieLimits limits{.stop = std::move(stop)};
        return MetadataResult::success(targetDate,
                                       patchMP4CreationDate(file, targetDate, limits, effect));
    } catch (const std::exception& error) {
        if (isSystems(error))
            throw;
        log.log(QStringLiteral("[Metadata] ⚠️ MP4 binary patch başarısız: %1 (%2)")
                    .arg(describe(error), pathText(file.filename())));
        return MetadataResult::failed(describe(error));
    }
}

} // namespace quorvane
