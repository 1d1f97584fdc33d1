// Times of day, compared to the millisecond: the time of day inside a present day count is only good to about a
// microsecond, so 22:00:00 sharp need not equal a pure 22:00:00 to the last bit.
#pragma once

#include "platform/uhr.h"

#include <cmath>
#include <cstdint>

namespace zek {

// Milliseconds since midnight; below 0 or above a day when a correction moved the time there.
inline std::int64_t Tagesmillisekunde(Datum tageszeit) {
    return std::llround(tageszeit * (SekundenProTag * 1000));
}

}  // namespace zek
