#include "metadata/FilenameDates.h"
#include "metadata/FolderNameDates.h"

#include <cstdlib>

using namespace quorvane;

/// Any name yields no date or a plausible one, and no number stands for a time to come; any path of
/// folders yields a stretch of time that has begun.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Date now{std::chrono::seconds(1717200000)};
    const Date end{std::chrono::sys_days(std::chrono::year(2051) / 1 / 2)};
    const QString name =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    identifierOfStagedName(name);
    const auto found = parseDateFromFilename(stripSafeIDPrefix(name), now);
    if (found && (found->date < Date(-std::chrono::days(1)) || found->date >= end))
        std::abort();
    if (found && found->source == DateSource::numberInName && found->date > now)
        std::abort();
    if (const auto span = dateOfFolder(name, now))
        if (span->from > span->to || span->from > now)
            std::abort();
    return 0;
}
