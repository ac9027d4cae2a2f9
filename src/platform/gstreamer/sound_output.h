// Plays a clip's sound in a separate pipeline, on a thread that may block on the sound server. These
// functions never block; while the server doesn't answer, or without a server or device, the clip plays
// silently. Any thread.
#pragma once

#include <memory>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

class SoundOutput {
public:
    // Starts opening the device.
    SoundOutput();
    ~SoundOutput();
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    // Raw audio with its caps; the time stamp is when it is due, in system clock time.
    void play(SampleHandle piece);
    // Silences the output at once and drops all queued samples.
    void flush();

    // The volume of all outputs of the process, 0 to 1.
    static void setVolume(double volume);

private:
    class Line;
    std::shared_ptr<Line> m_line;
};

} // namespace ql240::gstreamer
