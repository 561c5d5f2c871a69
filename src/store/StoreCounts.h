#pragma once

#include "store/DatabaseManager.h"

namespace quorvane {

/// How many records the store holds, told apart as a person asks for them.
struct StoreCounts {
    int verified = 0;      ///< with those deleted here since
    int datedByNumber = 0; ///< of `verified`: by a number in the name, taken for a Unix time
    int misdated = 0;      ///< of `verified`: filed under another time than their copy's
    int failed = 0;
    int undated = 0;   ///< held back for want of a date
    int undatable = 0; ///< of `undated`: their file takes none
    int pending = 0;
    int onlyInCloud = 0; ///< left out until Photos downloads the original
    int elsewhere = 0;   ///< left out: the original stands outside the library, at no place here

    bool operator==(const StoreCounts&) const = default;

    /// Throws `DBError`.
    static StoreCounts of(DatabaseManager& db);
};

} // namespace quorvane
