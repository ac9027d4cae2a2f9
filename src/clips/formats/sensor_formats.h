// The formats in which cameras store sensor data, one reader each, in the order in which they are tried: the
// first that finds records is used.
#pragma once

#include <array>
#include <span>

#include "clips/formats/clip_layout.h"
#include "clips/formats/record_sink.h"
#include "clips/formats/track_samples.h"

namespace ql240::sensorfiles {

struct SensorFormat {
    const char* name;
    // Adds the clip's records in this format, up to the first invalid one.
    void (*read)(ByteSource& source, const ClipLayout& clip, RecordSink& sink);
};

// Camera motion metadata: a track of typed records.
void readMotionTrack(ByteSource& source, const ClipLayout& clip, RecordSink& sink);
// `createdAt`: the clip's creation time in seconds since 1970.
void readMotionSample(const TrackSample& sample, RecordSink& sink,
                      std::optional<std::int64_t> createdAt = {});
// The bytes of a record of that type, with its header of four; 0 for an unknown type.
std::size_t motionRecordSize(std::size_t type);
// Whether the measurements in a complete record are in a plausible range, and not all bytes zero.
bool isPlausibleMotionRecord(std::span<const char> record);

// An index of "GPS " blocks, one record each.
void readGpsIndex(ByteSource& source, const ClipLayout& clip, RecordSink& sink);

// A text track of NMEA sentences.
void readTextTrack(ByteSource& source, const ClipLayout& clip, RecordSink& sink);
void readTextSample(const TrackSample& sample, RecordSink& sink);

// A free box with an NMEA log and a table of accelerations.
void readFreeLog(ByteSource& source, const ClipLayout& clip, RecordSink& sink);

// Tables of positions and accelerations without times.
void readPlainTables(ByteSource& source, const ClipLayout& clip, RecordSink& sink);

inline constexpr std::array kSensorFormats{
    SensorFormat{"camera motion track", readMotionTrack},  SensorFormat{"GPS block index", readGpsIndex},
    SensorFormat{"NMEA text track", readTextTrack},        SensorFormat{"log in a free box", readFreeLog},
    SensorFormat{"gps0 and gsen tables", readPlainTables},
};

} // namespace ql240::sensorfiles
