// What GStreamer and GLib call of ours: their frames are C, and nothing thrown may pass through them. Any
// thread.
#pragma once

namespace ql240::gstreamer {

// The callback's answer, or `otherwise` if there is no memory for it.
template <typename Answer, typename Body>
Answer answerToC(Answer otherwise, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return otherwise;
    }
}

} // namespace ql240::gstreamer
