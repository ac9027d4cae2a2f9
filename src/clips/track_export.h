// Writes tracks in the formats of map programs and spreadsheets: GPX 1.1 with TrackPointExtension v2, KML 2.2
// with gx:Track, GeoJSON (RFC 7946), CSV (RFC 4180 but for its line ends). Points go out as they come in, a
// segment at a time. One thread at a time.
#pragma once

#include <memory>

#include "clips/clip_record.h"

class QIODevice;

namespace ql240 {

enum class TrackFormat { Gpx, Kml, GeoJson, Csv };

// The format of that name ("gpx", "kml", "geojson", "csv"), nothing for any other.
std::optional<TrackFormat> trackFormatOf(const QString& name);

class TrackWriter {
public:
    virtual ~TrackWriter() = default;
    // A segment belongs to the clip of that name; it ends where the next one begins. `clock` is the clip's.
    virtual void beginSegment(const QString& clip, ClipRecord::Clock clock) = 0;
    virtual void addPoint(const RecordedFix& fix) = 0;
    // Formats without room for accelerations leave them out.
    virtual void addAcceleration(const RecordedAcceleration&) {}
    // Nothing is added afterwards. False if the device has refused anything.
    [[nodiscard]] virtual bool finish() = 0;
};

// `device` is open for writing and outlives the writer. `accelerations`: CSV gets columns for them.
std::unique_ptr<TrackWriter> makeTrackWriter(TrackFormat format, QIODevice& device,
                                             bool accelerations = false);

// "2013-04-05T12:30:00.250Z", without the Z where the clock is the camera's.
QString clockText(std::int64_t ms, ClipRecord::Clock clock);

} // namespace ql240
