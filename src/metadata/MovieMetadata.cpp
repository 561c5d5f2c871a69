#include "metadata/MovieMetadata.h"

namespace quorvane {

MetadataResult enrichVideoMetadata(const std::filesystem::path& file, Date targetDate,
                                   Log& log) noexcept {
    try {
        patchMP4CreationDate(file, targetDate);
        return MetadataResult::success(targetDate);
    } catch (const std::exception& error) {
        log.log(QStringLiteral("[Metadata] ⚠️ MP4 binary patch başarısız: %1 (%2)")
                    .arg(describe(error), pathText(file.filename())));
        return MetadataResult::failed(describe(error));
    }
}

} // namespace quorvane
