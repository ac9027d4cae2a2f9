// The inside of a free box.
#include "fuzz/sensor_fuzzing.h"

using namespace ql240::sensorfiles;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    readFile(data, size, {"", readFreeLog}, [](ClipLayout& clip, ByteRange all) { clip.freeBoxes = {all}; });
    return 0;
}
