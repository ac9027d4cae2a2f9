// The samples of one MP4 track in order, with their times, straight from the tables in the file.
#pragma once

#include <functional>
#include <span>

#include "clips/formats/clip_layout.h"

namespace ql240::sensorfiles {

// Calls `visit` for each sample that isn't empty: when it begins in ms from the clip's start (rounded up: a
// sample isn't there before its time; before the start it may be negative) and its bytes, of a long one only
// the first. Ends where the first table does or says nothing sensible, and with the first sample behind the
// time that anybody asks for.
using SampleVisitor = std::function<void(qint64 timeMs, std::span<const char> bytes)>;
void forEachSample(ByteSource& source, const TrackLayout& track, quint32 fileTimescale,
                   const SampleVisitor& visit);

} // namespace ql240::sensorfiles
