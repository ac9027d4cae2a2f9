// The sound output's volume, process-wide. The low 16 bits are the left channel, the high 16 bits the right
// one, 0 silent to 0xFFFF loudest. Interface thread.
#pragma once

#include <cstdint>
#include <functional>

namespace ql240 {

class WaveOut {
public:
    virtual ~WaveOut() = default;
    // Both return 0 on success; device 0 is the only one.
    virtual std::uint32_t waveOutGetVolume(std::uint32_t device, std::uint32_t* volume) = 0;
    virtual std::uint32_t waveOutSetVolume(std::uint32_t device, std::uint32_t volume) = 0;
};

// The volume of the program's own clips. It outlives every clip and may be set before the media module is
// loaded: the listener gets each new value, and the present one when it is set.
class OutputVolume final : public WaveOut {
public:
    using Listener = std::function<void(std::uint16_t left, std::uint16_t right)>;

    std::uint32_t waveOutGetVolume(std::uint32_t device, std::uint32_t* volume) override;
    std::uint32_t waveOutSetVolume(std::uint32_t device, std::uint32_t volume) override;
    void setListener(Listener listener);

private:
    void tell() const;

    std::uint32_t m_volume = 0xFFFFFFFF;
    Listener m_listener;
};

} // namespace ql240
