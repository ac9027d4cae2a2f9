// The formats whose records the container's tables don't time, record by record with their ranges in the
// file, for callers that copy only some of them.
#pragma once

#include <functional>

#include "clips/formats/clip_layout.h"
#include "clips/formats/second_records.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {

// One entry of the "gps " index and its block.
struct GpsBlock {
    ByteRange range;
    SecondRecord record;
    const char* problem;  // why the record is invalid, or nullptr
    bool isListed = true; // false: not read, and the last one
};
// `endUs`: reads no further than the first block that is certainly later.
std::vector<GpsBlock> readGpsBlocks(ByteSource& source, const ClipLayout& clip,
                                    std::int64_t endUs = limits::kRecordUs);

// The records of "gps0" (up to the first one that is certainly later than `endUs`) and "gsen".
inline constexpr std::int64_t kPlainPositionBytes = 32;
inline constexpr std::int64_t kPlainAccelerationBytes = 3;
inline constexpr std::int64_t kPlainAccelerationStepUs = 200'000;
std::vector<SecondRecord> readPlainPositions(ByteSource& source, const ClipLayout& clip,
                                             std::int64_t endUs = limits::kRecordUs);

// The parts of a log in a "free" box.
struct FreeLog {
    ByteRange log;
    ByteRange accelerations;
    std::optional<std::int64_t> startedAt; // in ms, by the lines' clock

    bool isEmpty() const { return log.isEmpty() && accelerations.isEmpty(); }
};
// `area`: the body of the box.
FreeLog findFreeLog(ByteSource& source, ByteRange area);

inline constexpr std::uint32_t kLogEndMark = 0xFFFFFFFF;
inline constexpr std::int64_t kLogAccelerationBytes = 10;

struct LogLine {
    QByteArrayView text;                // after its clock
    std::optional<std::int64_t> clock;  // its own, in ms
    std::optional<std::int64_t> timeMs; // from the clip's start; nothing before the first clock
    std::int64_t number = 0;            // counted from 1
    std::int64_t offset = 0;            // in the file
    bool isWhole = true;                // false: the log ends within it
    const char* problem = nullptr;      // why it's invalid: its clock, or its length, which ends the log
};
// Stops when `visit` returns false.
using LogVisitor = std::function<bool(const LogLine& line)>;
void forEachLogLine(ByteSource& source, const FreeLog& log, const LogVisitor& visit);

} // namespace ql240::sensorfiles
