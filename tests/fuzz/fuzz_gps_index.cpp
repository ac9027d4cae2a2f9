// An index that begins the file; its blocks may lie anywhere in it.
#include "fuzz/sensor_fuzzing.h"

using namespace ql240::sensorfiles;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    readFile(data, size, {"", readGpsIndex}, [](ClipLayout& clip, ByteRange all) { clip.gpsIndex = all; });
    return 0;
}
