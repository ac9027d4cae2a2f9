#include "clips/formats/sensor_formats.h"

#include "platform/logging.h"

namespace ql240::sensorfiles {
namespace {

void report(const SensorFormat& format, bool took, std::optional<qint64> end) {
    const char* outcome = took ? "took the clip" : "found nothing";
    if (end)
        qCDebug(lcSensors) << format.name << outcome << "and stopped at byte" << *end;
    else
        qCDebug(lcSensors) << format.name << outcome << "and read nothing";
}

} // namespace

SensorRecords readSensorRecords(ByteSource& source, const ClipLayout& clip) {
    source.takeLastEnd();
    for (const SensorFormat& format : kSensorFormats) {
        SensorRecords records;
        format.read(source, clip, records);
        report(format, !records.isEmpty(), source.takeLastEnd());
        if (!records.isEmpty()) {
            records.finish();
            return records;
        }
    }
    return {};
}

} // namespace ql240::sensorfiles
