// For callbacks from GStreamer and GLib: exceptions must not pass through their C code. Any thread.
#pragma once

namespace ql240::gstreamer {

// The callback's result, or `otherwise` if it runs out of memory.
template <typename Answer, typename Body>
Answer answerToC(Answer otherwise, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return otherwise;
    }
}

} // namespace ql240::gstreamer
