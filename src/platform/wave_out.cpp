#include "platform/wave_out.h"

#include <utility>

namespace ql240 {

namespace {

constexpr std::uint32_t kNoError = 0;
constexpr std::uint32_t kBadDevice = 2;

} // namespace

std::uint32_t OutputVolume::waveOutGetVolume(std::uint32_t device, std::uint32_t* volume) {
    if (device != 0)
        return kBadDevice;
    *volume = m_volume;
    return kNoError;
}

std::uint32_t OutputVolume::waveOutSetVolume(std::uint32_t device, std::uint32_t volume) {
    if (device != 0)
        return kBadDevice;
    m_volume = volume;
    tell();
    return kNoError;
}

void OutputVolume::setListener(Listener listener) {
    m_listener = std::move(listener);
    tell();
}

void OutputVolume::tell() const {
    if (m_listener)
        m_listener(static_cast<std::uint16_t>(m_volume & 0xFFFF), static_cast<std::uint16_t>(m_volume >> 16));
}

} // namespace ql240
