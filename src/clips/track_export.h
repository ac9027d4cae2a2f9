// Writes tracks for map programs and spreadsheets: GPX 1.1 with TrackPointExtension v2, KML 2.2 with
// gx:Track, GeoJSON (RFC 7946), CSV (RFC 4180 except for line ends). Writes point by point or segment by
// segment, so memory is limited to one segment. One thread at a time.
#pragma once

#include <memory>

#include "clips/clip_record.h"

class QIODevice;

namespace ql240 {

enum class TrackFormat { Gpx, Kml, GeoJson, Csv };

// The format named "gpx", "kml", "geojson" or "csv"; nothing for other names.
std::optional<TrackFormat> trackFormatOf(const QString& name);

class TrackWriter {
public:
    virtual ~TrackWriter() = default;
    // Starts a segment of the clip with this name and clock; ends the one before.
    virtual void beginSegment(const QString& clip, ClipRecord::Clock clock) = 0;
    virtual void addPoint(const RecordedFix& fix) = 0;
    // Ignored by formats that can't store accelerations.
    virtual void addAcceleration(const RecordedAcceleration&) {}
    // Call last. False if any write failed.
    [[nodiscard]] virtual bool finish() = 0;
};

// `device` is open for writing and outlives the writer. `accelerations`: CSV gets columns for them.
[[nodiscard]] std::unique_ptr<TrackWriter> makeTrackWriter(TrackFormat format, QIODevice& device,
                                                           bool accelerations = false);

// "2013-04-05T12:30:00.250Z"; without the Z if the clock is the camera's.
QString clockText(std::int64_t ms, ClipRecord::Clock clock);

} // namespace ql240
