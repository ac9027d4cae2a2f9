#include "fuzz/sensor_fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ql240::sensorfiles::SensorRecords records;
    ql240::sensorfiles::readMotionSample(0, {reinterpret_cast<const char*>(data), size}, records);
    ql240::sensorfiles::checkRecords(records);
    return 0;
}
