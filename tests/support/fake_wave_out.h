// A sound output that only records the volumes it gets.
#pragma once

#include <vector>

#include "platform/wave_out.h"

namespace ql240 {

struct FakeWaveOut : WaveOut {
    std::uint32_t volume = 0xFFFFFFFF;
    bool works = true;
    std::vector<std::uint32_t> sent;
    std::vector<std::uint32_t> devices; // device of each call

    std::uint32_t waveOutGetVolume(std::uint32_t device, std::uint32_t* present) override {
        devices.push_back(device);
        if (works)
            *present = volume;
        return works ? 0 : 1;
    }
    std::uint32_t waveOutSetVolume(std::uint32_t device, std::uint32_t wanted) override {
        devices.push_back(device);
        sent.push_back(wanted);
        if (works)
            volume = wanted;
        return works ? 0 : 1;
    }
};

} // namespace ql240
