#pragma once

#include "app/Composition.h"
#include "app/cli/Absences.h"
#include "store/RecordRemainders.h"

#include <QJsonObject>

namespace quorvane::cli {

/// What a run would do, without doing it: nothing is written to the store, nothing is uploaded.
struct Forecast {
    int photos = 0;
    int videos = 0;
    int livePhotos = 0;
    int alreadyDone = 0;  ///< verified earlier
    AbsenceCounts absent; ///< the original is not on this machine; left out by a run
    int unavailable = 0;  ///< the original cannot be had, and nobody knows why
    int undated = 0;      ///< would be held back
    int undatable = 0;    ///< of `undated`: the file takes no date
    int held = 0;         ///< failed or held back earlier; a run leaves them until they are retried
    RemainderCounts behind; ///< with what was sent earlier
    LeftOut leftOut;        ///< by the library
    std::int64_t bytes = 0;
    std::optional<QString> targetTitle;
    std::int64_t targetCount = 0; ///< items now in the target album
    int days = 0;                 ///< that Google's daily limit spreads the upload over

    int toUpload() const { return photos + videos + livePhotos - undated - unavailable; }
    bool overflowsTarget() const;
    /// A run would not end with everything at Google.
    bool leavesSomeOut() const { return undated + unavailable + held + leftOut.missed() > 0; }

    QString table() const;
    QJsonObject json() const;
};

/// Reads the source and every file's date. When nobody is signed in the target album is not looked
/// at. Throws `PhotoLibraryError`, `DBError` and `Cancelled`.
Forecast forecast(SourceServices& library, GoogleServices& google, DateFallbackMode fallbackMode,
                  std::stop_token stop);

} // namespace quorvane::cli
