#pragma once

#include "foundation/Error.h"

namespace quorvane::test {

/// What the error says that `work` ends with; empty when it ends with none.
template <typename Work>
QString messageOf(Work&& work) {
    try {
        work();
    } catch (const Error& error) {
        return error.localizedDescription();
    }
    return {};
}

} // namespace quorvane::test
