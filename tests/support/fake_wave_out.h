// A sound output that only records the volume it gets.
#pragma once

#include "platform/wave_out.h"

namespace ql240 {

struct FakeWaveOut : WaveOut {
    std::uint32_t waveOutGetVolume(std::uint32_t device, std::uint32_t* present) override {
        *present = volume;
        return device; // 0, the only one, is success
    }
    std::uint32_t waveOutSetVolume(std::uint32_t device, std::uint32_t wanted) override {
        volume = wanted;
        return device;
    }

    std::uint32_t volume = 0xFFFFFFFF;
};

} // namespace ql240
