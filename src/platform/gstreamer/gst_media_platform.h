// The media pipeline over GStreamer, which the first object or warmUp initialises.
// Interface thread.
#pragma once

#include <thread>

#include "platform/media_platform.h"

namespace ql240::gstreamer {

class GstMediaPlatform final : public MediaPlatform {
public:
    ~GstMediaPlatform() override;

    Status CoCreateInstance(const Guid& classId, IUnknown* outer, ClassContext context, const Guid& iid,
                            void** object) override;
    void warmUp() override;
    void setOutputVolume(std::uint16_t left, std::uint16_t right) override;

private:
    std::thread m_warmUp;
};

} // namespace ql240::gstreamer
