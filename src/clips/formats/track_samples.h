// Visits the samples of one MP4 track in order, with their times, as its sample tables list them.
#pragma once

#include <functional>
#include <span>

#include "clips/formats/clip_layout.h"
#include "clips/formats/record_sink.h"

namespace ql240::sensorfiles {

struct TrackSample {
    std::int64_t timeUs = 0; // rounded up; negative before the clip's start
    std::int64_t number = 0; // from 1
    std::int64_t offset = 0; // in the file
    std::span<const char> bytes;
    bool isWhole = true; // false: the sample's end is missing
};

// Calls `visit` for each sample that isn't empty, with the first bytes only of a long one. Ends where the
// first of the tables ends or is invalid, and after the first sample past the sink's end.
using SampleVisitor = std::function<void(const TrackSample& sample)>;
void forEachSample(ByteSource& source, const TrackLayout& track, std::uint32_t fileTimescale,
                   RecordSink& sink, const SampleVisitor& visit);

} // namespace ql240::sensorfiles
