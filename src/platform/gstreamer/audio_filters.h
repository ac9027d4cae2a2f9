// The filters of the sound: decoder and output. Interface thread.
#pragma once

#include "platform/gstreamer/gst_filter.h"

namespace ql240::gstreamer {

// Decodes whatever sound the splitter gives; raw sound passes.
class AudioDecoder final : public Filter {
public:
    AudioDecoder();
    Status prepareInput(Pin& input, const Pin& upstream) override;
};

// Plays on the desktop's sound server or device; without any it keeps time in silence.
class AudioRenderer final : public Filter {
public:
    AudioRenderer();
    ~AudioRenderer() override;

    bool isSink() const override { return true; }
    // True if `object` is one of this filter's elements or inside one.
    bool contains(GstObject* object) const;

    // The volume of every output of the process, 0 to 1.
    static void setVolume(double volume);

private:
    GstElement* m_volume = nullptr;
};

} // namespace ql240::gstreamer
