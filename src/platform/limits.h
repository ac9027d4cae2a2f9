// How much the program takes from outside: from a card, a clip or the network, whoever made them. What exceeds
// a limit is refused, or read no further, before anything is allocated for it.
#pragma once

#include <cstdint>

namespace ql240::limits {

// --- Card ---

// 64 KiB: the camera's own version file has some hundred bytes.
inline constexpr std::int64_t kVersionFileBytes = 64 * 1024;
// 64 KiB: the camera's own "setting.dat" has about 600 bytes.
inline constexpr std::int64_t kSettingFileBytes = 64 * 1024;
// As many as a folder of a FAT volume can hold.
inline constexpr int kFolderEntries = 65536;

// --- Pictures and the pipeline ---

// --- Sensor data ---

// --- Text ---

// 255: no file system in use has longer names or labels.
inline constexpr int kShownNameLetters = 255;

// 4096: the system opens no longer path.
inline constexpr int kShownPathLetters = 4096;

// 4096 bytes: the token that a desktop hands to a second start has some hundred.
inline constexpr std::int64_t kWindowMessageBytes = 4096;

// 100: the first folder or recording of a drop counts, and a hundred other things before it are no drop of
// recordings.
inline constexpr int kDroppedUrls = 100;

// --- Map ---

// 1 MiB: a street tile has 5 to 100 KB.
inline constexpr int kTileBytes = 1024 * 1024;

// 256 and 512 pixels a side are what tile servers give, the second for dense screens.
inline constexpr int kTileSides[] = {256, 512};

} // namespace ql240::limits
