#include "clips/formats/leap_seconds.h"

#include <array>

namespace ql240 {
namespace {

constexpr std::int64_t kGpsEpochMs = 315964800000; // 6 January 1980
constexpr std::int64_t kDayMs = 86400000;

// Days since 1970 on which the difference grows by one second; IERS Bulletin C. None announced after 2017.
constexpr std::array<std::int64_t, 18> kLeapDays{4199, 4564, 4929,  5660,  6574,  7305,  7670,  8217,  8582,
                                                 8947, 9496, 10043, 10592, 13149, 14245, 15522, 16617, 17167};

} // namespace

std::int64_t utcFromGpsMs(std::int64_t gpsMs) {
    const std::int64_t unshifted = gpsMs + kGpsEpochMs;
    std::int64_t seconds = 0;
    for (const std::int64_t day : kLeapDays) {
        // In GPS time the UTC day begins later by all the leap seconds so far.
        if (unshifted >= day * kDayMs + (seconds + 1) * 1000)
            ++seconds;
    }
    return unshifted - seconds * 1000;
}

} // namespace ql240
