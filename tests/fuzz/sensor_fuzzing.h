// What the fuzz targets of the sensor formats share: each reader runs for the dashboard's track and for the
// whole record.
#pragma once

#include <QBuffer>
#include <cstdlib>

#include "clips/formats/record_collector.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/sensor_records.h"

namespace ql240::sensorfiles {

inline void demand(bool holds) {
    if (!holds)
        std::abort();
}

// Whatever was found, the answers stay on earth.
inline void checkTrack(SensorRecords& records) {
    records.finish();
    for (qint64 t = 0; t <= 61000 && records.covers(t); t += 500) {
        const Position position = records.positionAt(t);
        demand(std::abs(position.latitude) <= 90000000 && std::abs(position.longitude) <= 180000000);
        demand(position.isFix() || records.speedAt(t) == 0);
        records.accelerationAt(t);
    }
}

inline void checkRecord(const ClipRecord& record) {
    demand(record.stops.size() <= limits::kReportedStops);
    qint64 lastUs = std::numeric_limits<qint64>::min();
    for (const RecordedFix& fix : record.fixes) {
        demand(fix.timeUs >= lastUs);
        demand(fix.isValid() || (std::isnan(fix.latitude) && std::isnan(fix.speedKmh)));
        lastUs = fix.timeUs;
    }
    for (const RecordedAcceleration& each : record.accelerations)
        demand(!std::isnan(each.x) && !std::isnan(each.y) && !std::isnan(each.z));
}

template <typename Read>
void readTwice(Read read) {
    SensorRecords records;
    read(records);
    checkTrack(records);
    RecordCollector collector;
    read(collector);
    checkRecord(collector.take(ClipRecord::Clock::Utc));
}

// Lets one reader loose on a file of these bytes.
template <typename Place>
void readFile(const uint8_t* data, size_t size, const SensorFormat& format, Place place) {
    QBuffer buffer;
    buffer.setData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    buffer.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    readTwice([&](RecordSink& sink) {
        ByteSource source(buffer);
        ClipLayout clip;
        place(clip, ByteRange{0, source.size()});
        format.read(source, clip, sink);
    });
}

} // namespace ql240::sensorfiles
