// The samples of one MP4 track in order, with their times, straight from the tables in the file.
#pragma once

#include <functional>
#include <span>

#include "clips/formats/clip_layout.h"
#include "clips/formats/record_sink.h"

namespace ql240::sensorfiles {

struct TrackSample {
    std::int64_t timeUs = 0; // rounded up; before the clip's start it may be negative
    std::int64_t number = 0; // from 1
    std::int64_t offset = 0; // in the file
    std::span<const char> bytes;
};

// Calls `visit` for each sample that isn't empty, of a long one with the first bytes only. Ends where the
// first table does or says nothing sensible, and with the first sample behind what the sink asks for.
using SampleVisitor = std::function<void(const TrackSample& sample)>;
void forEachSample(ByteSource& source, const TrackLayout& track, std::uint32_t fileTimescale,
                   RecordSink& sink, const SampleVisitor& visit);

} // namespace ql240::sensorfiles
