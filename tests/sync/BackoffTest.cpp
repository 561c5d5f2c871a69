#include "sync/Backoff.h"

#include <gtest/gtest.h>

namespace quorvane {

TEST(Backoff, DoublesUpToAMinute) {
    constexpr std::pair<int, int> secondsAfter[] = {{1, 2},   {2, 4},   {3, 8},       {4, 16},
                                                    {5, 32},  {6, 60},  {7, 60},      {31, 60},
                                                    {32, 60}, {64, 60}, {1 << 30, 60}};
    for (const auto& [errors, seconds] : secondsAfter)
        EXPECT_EQ(backoffAfter(errors).count(), seconds) << errors;
}

} // namespace quorvane
