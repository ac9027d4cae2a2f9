// Cuts sensor data that the container's tables don't time, and makes their times count from the start of the
// piece. Unreadable bytes are omitted. One thread at a time.
#pragma once

#include "clips/cut/cut_range.h"
#include "clips/formats/clip_layout.h"

namespace ql240::cut {

using sensorfiles::ByteRange;
using sensorfiles::ByteSource;
using sensorfiles::ClipLayout;

// The ranges, in the clip, of the blocks of the "gps " index that belong to the piece. Empty ones stand for
// seconds without a block.
std::vector<ByteRange> gpsBlocks(ByteSource& source, const ClipLayout& clip, CutRange range);

// The new body of a "free" box with a log; empty without a log. `area`: the old body.
QByteArray freeLog(ByteSource& source, ByteRange area, CutRange range);

// The new bodies of "gps0" and "gsen".
QByteArray plainPositions(ByteSource& source, const ClipLayout& clip, CutRange range);
QByteArray plainAccelerations(ByteSource& source, const ClipLayout& clip, CutRange range);

// The new trailer of an AVI file: everything through the marker, and the lines in the range. `clipMs`: the
// clip's duration. `startsLate`: the camera started writing lines late; then copies of the first one precede
// them.
QByteArray trailer(const QByteArray& tail, std::int64_t clipMs, bool startsLate, CutRange range);

} // namespace ql240::cut
