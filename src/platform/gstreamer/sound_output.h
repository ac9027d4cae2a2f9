// A clip's sound beside the clip's pipeline: an output of its own, driven by a thread that may wait for the
// sound server as long as that likes. Nothing here ever waits for it; while it doesn't answer, the clip plays
// in silence. Without a server or device nothing is heard. Any thread.
#pragma once

#include <memory>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

class SoundOutput {
public:
    // Begins to open it.
    SoundOutput();
    ~SoundOutput();
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    // Raw sound with its caps, whose time stamp says when it is to be heard, as the system clock counts.
    void play(SampleHandle piece);
    // Silence at once: what is still to be heard is forgotten.
    void flush();

    // The volume of every output of the process, 0 to 1.
    static void setVolume(double volume);

private:
    class Line;
    std::shared_ptr<Line> m_line;
};

} // namespace ql240::gstreamer
