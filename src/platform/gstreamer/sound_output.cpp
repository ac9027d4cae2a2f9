#include "platform/gstreamer/sound_output.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace ql240::gstreamer {

namespace {

constexpr std::chrono::seconds kPatience(2);

// Lives as long as the opening goes on or somebody waits for it.
struct Opening {
    std::mutex mutex;
    std::condition_variable changed;
    bool isEnded = false;
    bool isAwaited = true;
};

void open(GstElement* output, Opening& opening) {
    gst_element_set_state(output, GST_STATE_READY);
    const std::scoped_lock lock(opening.mutex);
    opening.isEnded = true;
    opening.changed.notify_one();
    if (!opening.isAwaited)
        gst_element_set_state(output, GST_STATE_NULL);
}

ElementHandle silence() {
    ElementHandle output = makeElement("fakesink");
    if (output)
        g_object_set(output.get(), "sync", TRUE, nullptr);
    return output;
}

} // namespace

ElementHandle openSoundOutput() {
    static std::weak_ptr<Opening> unanswered;
    if (!unanswered.expired())
        return silence();
    ElementHandle output = makeElement("autoaudiosink");
    if (!output)
        return nullptr;
    const auto opening = std::make_shared<Opening>();
    std::thread([opening, element = share(output.get())] { open(element.get(), *opening); }).detach();
    std::unique_lock lock(opening->mutex);
    if (opening->changed.wait_for(lock, kPatience, [&opening] { return opening->isEnded; }))
        return output;
    opening->isAwaited = false;
    unanswered = opening;
    return silence();
}

} // namespace ql240::gstreamer
