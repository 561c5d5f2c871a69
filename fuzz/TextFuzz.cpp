#include "metadata/TextDates.h"

#include "metadata/LocalCalendar.h"

#include <cstdlib>

using namespace quorvane;

/// Any bytes yield dates that a file can say, each form once.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto dates = textDatesIn({data, size});
    if (dates.size() > 3)
        std::abort();
    for (const TextDate& text : dates)
        if (!writableDate(text.date))
            std::abort();
    return 0;
}
