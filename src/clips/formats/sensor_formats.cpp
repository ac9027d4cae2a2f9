#include "clips/formats/sensor_formats.h"

namespace ql240::sensorfiles {

SensorRecords readSensorRecords(ByteSource& source, const ClipLayout& clip) {
    for (const SensorFormat& format : kSensorFormats) {
        SensorRecords records;
        format.read(source, clip, records);
        if (!records.isEmpty()) {
            records.finish();
            return records;
        }
    }
    return {};
}

} // namespace ql240::sensorfiles
