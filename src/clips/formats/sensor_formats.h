// The ways cameras store sensor data in their clips, one reader each, in the order in which they are tried.
#pragma once

#include <array>
#include <span>

#include "clips/formats/clip_layout.h"
#include "clips/formats/sensor_records.h"

namespace ql240::sensorfiles {

struct SensorFormat {
    const char* name;
    // Adds what the clip has in this format, up to where it stops making sense.
    void (*read)(ByteSource& source, const ClipLayout& clip, SensorRecords& records);
};

// Camera motion metadata: a track of records that say their type.
void readMotionTrack(ByteSource& source, const ClipLayout& clip, SensorRecords& records);
void readMotionSample(qint64 timeMs, std::span<const char> bytes, SensorRecords& records);

// An index of "GPS " blocks, one record each.
void readGpsIndex(ByteSource& source, const ClipLayout& clip, SensorRecords& records);

// A text track of NMEA sentences.
void readTextTrack(ByteSource& source, const ClipLayout& clip, SensorRecords& records);
void readTextSample(qint64 timeMs, std::span<const char> bytes, SensorRecords& records);

// A free box with an NMEA log and a table of accelerations.
void readFreeLog(ByteSource& source, const ClipLayout& clip, SensorRecords& records);

// Tables of positions and accelerations without times of their own.
void readPlainTables(ByteSource& source, const ClipLayout& clip, SensorRecords& records);

inline constexpr std::array kSensorFormats{
    SensorFormat{"camera motion track", readMotionTrack},  SensorFormat{"GPS block index", readGpsIndex},
    SensorFormat{"NMEA text track", readTextTrack},        SensorFormat{"log in a free box", readFreeLog},
    SensorFormat{"gps0 and gsen tables", readPlainTables},
};

// The records of the first format that has any.
SensorRecords readSensorRecords(ByteSource& source, const ClipLayout& clip);

} // namespace ql240::sensorfiles
