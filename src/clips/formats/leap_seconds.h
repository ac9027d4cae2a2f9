// Conversion of GPS time, which has no leap seconds, to UTC.
#pragma once

#include <cstdint>

namespace ql240 {

// GPS time in ms since 6 January 1980; returns UTC in ms since 1970.
std::int64_t utcFromGpsMs(std::int64_t gpsMs);

} // namespace ql240
