// How much the program takes from outside: from a card, a clip or the network, whoever made them. What
// exceeds a limit is refused, or read no further, before anything is allocated for it.
#pragma once

#include <cstddef>
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

// 64 Mi: the largest sensors in cameras have 9,248 x 6,944.
inline constexpr std::int64_t kPicturePixels = 64 * 1024 * 1024;

// What a stream says of its pictures' size.
constexpr bool isPictureTooLarge(std::int64_t width, std::int64_t height) {
    return width < 0 || height < 0 || (height > 0 && width > kPicturePixels / height);
}

// 512 MiB: the highest levels of H.264 and H.265 refer back to 267 MB of pictures, and some more are shown.
inline constexpr std::size_t kDecodedBytes = 512 * 1024 * 1024;

// 128 MiB: eight pictures of 3,840 x 2,160 for steps back.
inline constexpr std::size_t kFrameRowBytes = 128 * 1024 * 1024;

// 64 MiB: three seconds at 170 Mbit/s, three times what cameras write.
inline constexpr unsigned kQueuedPictureBytes = 64 * 1024 * 1024;

// 8 MiB: three seconds of eight channels of 24 bits at 96 kHz.
inline constexpr unsigned kQueuedSoundBytes = 8 * 1024 * 1024;

// Three seconds of 3,000 pieces each; one takes half a kilobyte besides what is in it.
inline constexpr unsigned kQueuedBuffers = 10'000;

// 64 MiB at once: the largest picture compressed, and the index of a clip of many hours.
inline constexpr unsigned kReadBytes = 64 * 1024 * 1024;

// 128 MiB until a clip is open: its index takes 5 MB an hour, and each byte is needed once.
inline constexpr std::int64_t kOpeningBytes = 128 * 1024 * 1024;

// --- Sensor data ---

// The dashboard asks for no later moment.
inline constexpr std::int64_t kSensorTrackMs = 61'000;

// 16 MiB: the log of an hour has two, 61 s of the fullest track one.
inline constexpr std::int64_t kSensorBytes = 16 * 1024 * 1024;

// 61 s of 1,600 a second.
inline constexpr std::size_t kSensorRecords = 100'000;

// Each is a call of the system; an hour in fragments of half a second takes 15,000.
inline constexpr int kSensorReads = 100'000;

// 64 KiB of a sample count: more than any recorder packs into one.
inline constexpr std::int64_t kSensorSampleBytes = 64 * 1024;

// Of one GPS block; the record lies in the first hundred bytes of those known.
inline constexpr std::size_t kGpsBlockBytes = 4096;

// An NMEA sentence has 82 characters; recorders put a time and further numbers before it.
inline constexpr std::ptrdiff_t kSensorLine = 1024;

// Cameras write five tracks at most.
inline constexpr std::size_t kTracks = 64;

// The log lies in one of them; writers leave some more as padding.
inline constexpr std::size_t kFreeBoxes = 64;

// Ahead of a track's beginning there is one, perhaps two.
inline constexpr std::uint32_t kEdits = 16;

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
