// The filters of the sound: decoder and output. Interface thread, but for what is said otherwise.
#pragma once

#include <deque>
#include <mutex>
#include <optional>

#include "platform/gstreamer/gst_filter.h"
#include "platform/gstreamer/sound_output.h"

namespace ql240::gstreamer {

// Decodes whatever sound the splitter gives; raw sound passes.
class AudioDecoder final : public Filter {
public:
    AudioDecoder();
    Status prepareInput(Pin& input, const Pin& upstream) override;
};

// Keeps time in silence in the clip's pipeline, and hands the sound on to the output a little ahead of the
// time at which it is to be heard.
class AudioRenderer final : public Filter {
public:
    AudioRenderer();
    ~AudioRenderer() override;

    bool isSink() const override { return true; }
    // What the pipeline's bus says of a change of state. Any thread.
    void stateChanged(GstMessage* message);

private:
    struct Piece {
        SampleHandle sample;
        GstClockTime runningTime;
    };

    static GstPadProbeReturn arrived(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    void eventArrived(GstEvent* event);
    void soundArrived(GstBuffer* sound);
    static void isDue(GstElement* sink, GstBuffer* sound, GstPad* pad, gpointer self);
    void dropBefore(GstBuffer* sound);
    void playFrom(GstClockTime baseTime);
    void play(const Piece& piece);

    ElementHandle m_sink;
    SoundOutput m_output;

    // Streaming threads, and whichever changes the state; guarded by m_mutex.
    std::mutex m_mutex;
    CapsHandle m_caps;
    GstSegment m_segment{};
    std::deque<Piece> m_ahead;              // from the one that is heard now
    std::optional<GstClockTime> m_baseTime; // while the clip plays
};

} // namespace ql240::gstreamer
