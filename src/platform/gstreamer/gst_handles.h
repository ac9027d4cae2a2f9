// Typed handles for GStreamer's reference-counted objects: each owns one reference and releases it. Any
// thread.
#pragma once

#include <gst/gst.h>

#include <memory>

namespace ql240::gstreamer {

struct Unref {
    void operator()(GstAllocator* object) const { gst_object_unref(object); }
    void operator()(GstElement* object) const { gst_object_unref(object); }
    void operator()(GstPad* object) const { gst_object_unref(object); }
    void operator()(GstBus* object) const { gst_object_unref(object); }
    void operator()(GstBuffer* object) const { gst_buffer_unref(object); }
    void operator()(GstCaps* object) const { gst_caps_unref(object); }
    void operator()(GstSample* object) const { gst_sample_unref(object); }
    void operator()(GstMessage* object) const { gst_message_unref(object); }
    void operator()(GstEvent* object) const { gst_event_unref(object); }
};

template <typename T>
using Handle = std::unique_ptr<T, Unref>;

using ElementHandle = Handle<GstElement>;
using PadHandle = Handle<GstPad>;
using BusHandle = Handle<GstBus>;
using BufferHandle = Handle<GstBuffer>;
using CapsHandle = Handle<GstCaps>;
using SampleHandle = Handle<GstSample>;
using MessageHandle = Handle<GstMessage>;

// A new handle, with its own reference, to a borrowed object.
[[nodiscard]] inline ElementHandle share(GstElement* element) {
    return ElementHandle(GST_ELEMENT(gst_object_ref(element)));
}
[[nodiscard]] inline PadHandle share(GstPad* pad) {
    return PadHandle(GST_PAD(gst_object_ref(pad)));
}
[[nodiscard]] inline BufferHandle share(GstBuffer* buffer) {
    return BufferHandle(gst_buffer_ref(buffer));
}
[[nodiscard]] inline CapsHandle share(GstCaps* caps) {
    return CapsHandle(gst_caps_ref(caps));
}

// A new element that the caller owns (not floating); empty if the plugin is missing.
[[nodiscard]] inline ElementHandle makeElement(const char* factory) {
    GstElement* element = gst_element_factory_make(factory, nullptr);
    return ElementHandle(element ? GST_ELEMENT(gst_object_ref_sink(element)) : nullptr);
}

[[nodiscard]] inline PadHandle staticPad(GstElement* element, const char* name) {
    return PadHandle(gst_element_get_static_pad(element, name));
}

} // namespace ql240::gstreamer
