// What the fuzz targets of the sensor formats share.
#pragma once

#include <QBuffer>
#include <cstdlib>

#include "clips/formats/sensor_formats.h"

namespace ql240::sensorfiles {

inline void demand(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Whatever was found, the answers stay on earth.
inline void checkRecords(SensorRecords& records) {
    records.finish();
    for (qint64 t = 0; t <= 61000 && records.covers(t); t += 500) {
        const Position position = records.positionAt(t);
        demand(std::abs(position.latitude) <= 90000000 && std::abs(position.longitude) <= 180000000);
        demand(position.isFix() || records.speedAt(t) == 0);
        records.accelerationAt(t);
    }
}

// Lets one reader loose on a file of these bytes.
template <typename Place>
void readFile(const uint8_t* data, size_t size, const SensorFormat& format, Place place) {
    QBuffer buffer;
    buffer.setData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    buffer.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    ByteSource source(buffer);
    ClipLayout clip;
    place(clip, ByteRange{0, source.size()});
    SensorRecords records;
    format.read(source, clip, records);
    checkRecords(records);
}

} // namespace ql240::sensorfiles
