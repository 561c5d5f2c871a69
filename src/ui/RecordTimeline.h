#pragma once

#include "foundation/LogEntry.h"
#include "store/RecordHistory.h"

namespace quorvane {

/// One thing that happened to a record, in a person's words.
struct TimelineStep {
    Date time;
    QString title;  ///< "tarih: dosyanın içi"
    QString detail; ///< a size, a date, a name at Google, a code with its reason
    bool isFailure = false;

    bool operator==(const TimelineStep&) const = default;
};

/// From the record's discovery to where it stands now, with what the log tells of its troubles in
/// between. Pure.
std::vector<TimelineStep> timelineOf(const RecordHistory& history,
                                     const std::vector<LogEntry>& linesAboutIt);

} // namespace quorvane
