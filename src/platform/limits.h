// How much the program takes from outside: from a card, a clip or the network, whoever made them. What exceeds
// a limit is refused, or read no further, before anything is allocated for it.
#pragma once

#include <cstdint>

namespace ql240::limits {

// --- Card ---

// 1 MiB: the camera's own version file has some hundred bytes.
inline constexpr std::int64_t kVersionFileBytes = 1024 * 1024;

// --- Pictures and the pipeline ---

// --- Sensor data ---

// --- Text ---

// --- Map ---

} // namespace ql240::limits
