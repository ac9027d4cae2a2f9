// Limits for everything that comes from outside: from a card, a clip or the network. What exceeds a limit is
// rejected or not read any further, before memory is allocated for it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ql240::limits {

// --- Card ---

// 64 KiB: the camera's own version file has a few hundred bytes.
inline constexpr std::int64_t kVersionFileBytes = 64 * 1024;
// 64 KiB: the camera's own "setting.dat" has about 600 bytes.
inline constexpr std::int64_t kSettingFileBytes = 64 * 1024;
// 64 MiB: a picture for the camera's screen has less than one.
inline constexpr std::int64_t kScreenSaverBytes = 64 * 1024 * 1024;
// The maximum of a folder on a FAT volume.
inline constexpr int kFolderEntries = 65536;

// 200,000 names of a folder with clips: two terabytes hold 35,000 clips of a minute.
inline constexpr int kClipFolderNames = 200'000;

// Folders listed in one folder: more are too many to look through, and a path can be typed.
inline constexpr int kTreeFolders = 5000;

// --- Pictures and the pipeline ---

// 64 Mi: the largest camera sensors have 9,248 x 6,944 pixels.
inline constexpr std::int64_t kPicturePixels = 64 * 1024 * 1024;

// Checks the picture size that a stream declares.
constexpr bool isPictureTooLarge(std::int64_t width, std::int64_t height) {
    return width < 0 || height < 0 || (height > 0 && width > kPicturePixels / height);
}

// 1.5 Gi pixels processed for one piece: each slice or scan can make a decoder process the whole picture, at
// about 1,000 million pixels per second. That allows 190 slices at 3,840 x 2,160; one for each row of blocks
// is 135.
inline constexpr std::int64_t kPassedPixels = INT64_C(1536) * 1024 * 1024;

// 16 MiB for one sample or index read at once: an uncompressed picture of 3,840 x 2,160 has 12 MB, the index
// of three hours 15 MB.
inline constexpr unsigned kPieceBytes = 16 * 1024 * 1024;

// Compressed data that has not led to a picture: two samples of the largest size.
inline constexpr std::size_t kPicturelessBytes = 2 * kPieceBytes;

// Two of the longest groups of pictures: a parser drops what precedes the first key frame.
inline constexpr std::size_t kPicturelessPieces = 600;

// 512 MiB for all streams of a clip: the highest levels of H.264 and H.265 need 267 MB of reference pictures,
// and a few more are on display.
inline constexpr std::size_t kDecodedBytes = 512 * 1024 * 1024;

// 128 MiB: eight pictures of 3,840 x 2,160 for stepping back.
inline constexpr std::size_t kFrameRowBytes = 128 * 1024 * 1024;

// 64 MiB: three seconds at 170 Mbit/s, three times the bit rate of cameras.
inline constexpr unsigned kQueuedPictureBytes = 64 * 1024 * 1024;

// 8 MiB: three seconds of eight channels of 24 bits at 96 kHz.
inline constexpr unsigned kQueuedSoundBytes = 8 * 1024 * 1024;

// Three seconds at 3,000 buffers per second; each takes half a kilobyte besides its data.
inline constexpr unsigned kQueuedBuffers = 10'000;

// 24 MiB until a clip is open: an index takes 5 MB per hour, and each byte is needed once.
inline constexpr std::int64_t kOpeningBytes = 24 * 1024 * 1024;

// 2 million samples in an MP4 clip: three hours of two streams at 60 pictures per second, and sound. The
// demuxer takes 60 bytes for each.
inline constexpr std::uint64_t kClipSamples = 2'000'000;

// An index has one, and one more for each fragment: 27 hours of half a second each.
inline constexpr std::size_t kIndexBoxes = 200'000;

// 4 MiB of headers besides the sample tables: some cameras put a preview picture there.
inline constexpr std::int64_t kHeaderBytes = 4 * 1024 * 1024;

// 16 KiB for a track's sample description, which has a few hundred bytes. The demuxer recurses into its
// boxes.
inline constexpr std::size_t kSampleEntryBytes = 16 * 1024;

// Half the lowest and twice the highest usual rate, 8 and 192 kHz. Resampling for a device with another rate
// takes memory in proportion to the ratio of the two.
inline constexpr int kSlowestSound = 4000;
inline constexpr int kFastestSound = 384'000;
// Recorders write 7.1 at most.
inline constexpr int kSoundChannels = 8;

// --- Sensor data ---

// The dashboard asks for no later time.
inline constexpr std::int64_t kSensorTrackMs = 61'000;

// 16 MiB: an hour's log takes 2 MB, 61 s of the densest track 1 MB.
inline constexpr std::int64_t kSensorBytes = 16 * 1024 * 1024;

// 61 s at 1,600 per second.
inline constexpr std::size_t kSensorRecords = 100'000;

// Each is a system call; an hour in fragments of half a second takes 15,000.
inline constexpr int kSensorReads = 20'000;

// 100 h, for a whole record: later times are nonsense.
inline constexpr std::int64_t kRecordUs = 360'000'000'000;

// 3 h of 900 a second. Memory is taken for those that the file has, not for what its tables count.
inline constexpr std::size_t kRecordRecords = 10'000'000;

// 256 MiB: 3 h of 200 accelerations and ten fixes a second take 60 MB.
inline constexpr std::int64_t kRecordBytes = 256 * 1024 * 1024;
// 3 h of 90 samples a second, each in a chunk of its own.
inline constexpr std::int64_t kRecordReads = 1'000'000;

// Further ones are only counted.
inline constexpr int kReportedStops = 16;

// Only the first 64 KiB of a sample are read: more than any recorder writes into one.
inline constexpr std::int64_t kSensorSampleBytes = 64 * 1024;

// Per GPS block; in all known ones the record is within the first hundred bytes.
inline constexpr std::size_t kGpsBlockBytes = 4096;

// An NMEA sentence has at most 82 characters; recorders put a time and more numbers before it.
inline constexpr std::ptrdiff_t kSensorLine = 1024;

// Cameras write five tracks at most. The demuxer takes longer for each than for the one before.
inline constexpr std::size_t kTracks = 64;

// One of them holds the log; some writers add others as padding.
inline constexpr std::size_t kFreeBoxes = 64;

// Before a track's first media there is one edit, perhaps two.
inline constexpr std::uint32_t kEdits = 16;

// --- Text ---

// 255: no common file system allows longer names or labels.
inline constexpr int kShownNameLetters = 255;

// 4096: the kernel opens no longer path.
inline constexpr int kShownPathLetters = 4096;

// 4096 bytes: the activation token that a desktop gives to a second start has a few hundred.
inline constexpr std::int64_t kWindowMessageBytes = 4096;

// 100: the first folder or recording in a drop counts; if a hundred other items come first, it isn't a drop
// of recordings.
inline constexpr int kDroppedUrls = 100;

// --- Map ---

// 1 MiB: a street tile has 5 to 100 KB.
inline constexpr int kTileBytes = 1024 * 1024;

// Tile servers send 256 x 256 pixels, or 512 x 512 for high-density screens.
inline constexpr int kTileSides[] = {256, 512};

} // namespace ql240::limits
