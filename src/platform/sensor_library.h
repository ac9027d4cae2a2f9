// The sensor data in a clip, through the four calls of the camera maker's library, for which this interface
// was made. One thread at a time; a call may block on the file system. Positions are magnitudes with a
// letter, in millionths of a degree; speeds are km/h; accelerations are raw counts (kCountsPerG).
#pragma once

#include <cstdint>

namespace ql240 {

class SensorLibrary {
public:
    using Handle = std::uintptr_t;
    static constexpr int kCreateTimeSize = 64;
    static constexpr double kCountsPerG = 128;

    virtual ~SensorLibrary() = default;

    // Reads the clip at `path` (zero-terminated, local 8-bit encoding). Returns zero if the clip has no
    // sensor data. There is no call to release a handle: it is valid until the next call of this function.
    virtual Handle getInformationData(const char* path) = 0;

    // Writes the recording's start as zero-terminated text into `buffer` (kCreateTimeSize bytes); empty if
    // the clip doesn't say. Nonzero if there is a text.
    virtual int getCreateTime(Handle handle, char* buffer) = 0;

    // Nonzero if there is a sample at `timeMs`; otherwise nothing is written. Letters: 'N' or 'S', 'E' or
    // 'W'.
    virtual int getLatLonSpeed(Handle handle, std::int64_t timeMs, std::int32_t* latitude,
                               std::int32_t* longitude, std::int8_t* latitudeLetter,
                               std::int8_t* longitudeLetter, std::int32_t* speed) = 0;
    virtual int getAccXYZ(Handle handle, std::int64_t timeMs, std::int16_t* x, std::int16_t* y,
                          std::int16_t* z) = 0;
};

} // namespace ql240
