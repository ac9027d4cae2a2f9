// The process-wide sound output volume. The low 16 bits are the left channel, the high 16 bits the right; 0
// silent to 0xFFFF loudest. Interface thread.
#pragma once

#include <cstdint>

namespace ql240 {

class WaveOut {
public:
    virtual ~WaveOut() = default;
    // Both return 0 on success; device 0 is the only one.
    virtual std::uint32_t waveOutGetVolume(std::uint32_t device, std::uint32_t* volume) = 0;
    virtual std::uint32_t waveOutSetVolume(std::uint32_t device, std::uint32_t volume) = 0;
};

} // namespace ql240
