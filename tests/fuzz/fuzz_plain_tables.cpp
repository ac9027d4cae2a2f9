// The first half positions, the second accelerations.
#include "fuzz/sensor_fuzzing.h"

using namespace ql240::sensorfiles;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    readFile(data, size, {"", readPlainTables}, [](ClipLayout& clip, ByteRange all) {
        clip.gps0 = {0, all.size / 2};
        clip.gsen = {all.size / 2, all.size - all.size / 2};
    });
    return 0;
}
