#include "fuzz/sensor_fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ql240::sensorfiles;
    readTwice([&](RecordSink& sink) {
        readMotionSample({0, 1, 0, {reinterpret_cast<const char*>(data), size}}, sink);
    });
    return 0;
}
