// The audio filters: decoder and output. Interface thread unless noted.
#pragma once

#include <deque>
#include <mutex>
#include <optional>

#include "platform/gstreamer/gst_filter.h"
#include "platform/gstreamer/sound_output.h"

namespace ql240::gstreamer {

// Decodes the splitter's audio stream; raw audio passes through.
class AudioDecoder final : public Filter {
public:
    AudioDecoder();
    Status prepareInput(Pin& input, const Pin& upstream) override;
};

// Silent in the clip's pipeline, where it only keeps time; passes the samples on to the sound output shortly
// before they are due.
class AudioRenderer final : public Filter {
public:
    AudioRenderer();
    ~AudioRenderer() override;

    bool isSink() const override { return true; }
    // Call with the pipeline's state changes. Any thread.
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

    // Streaming threads, and the thread that changes the state; guarded by m_mutex.
    std::mutex m_mutex;
    CapsHandle m_caps;
    GstSegment m_segment{};
    std::deque<Piece> m_ahead;              // from the one that plays now
    std::optional<GstClockTime> m_baseTime; // while the clip plays
};

} // namespace ql240::gstreamer
