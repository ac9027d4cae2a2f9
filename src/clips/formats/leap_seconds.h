// Time of the satellites, which counts on without leap seconds, and UTC.
#pragma once

#include <QtGlobal>

namespace ql240 {

// Milliseconds since 6 January 1980 as the satellites count them, in milliseconds since 1970, UTC.
std::int64_t utcFromGpsMs(std::int64_t gpsMs);

} // namespace ql240
