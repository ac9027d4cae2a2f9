// The text trailer of AVI clips.
#include <cstdlib>

#include "sensors/sensor_track.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView tail(data, static_cast<qsizetype>(size));
    for (const bool startsLate : {false, true}) {
        ql240::SensorTrack track;
        ql240::appendTrailerBytes(track, tail, startsLate, 60000);
        if (track.size() > size + size / 3 + 2)
            std::abort();
        ql240::sampleForTime(track, 30000);
    }
    return 0;
}
