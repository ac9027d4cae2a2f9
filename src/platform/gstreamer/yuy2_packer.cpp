#include "platform/gstreamer/yuy2_packer.h"

#include <gst/video/gstvideofilter.h>
#include <libyuv.h>

#include <cstring>

#include "platform/gstreamer/frame_allocator.h"
#include "platform/gstreamer/gst_handles.h"
#include "platform/limits.h"

namespace {

struct Yuy2Packer {
    GstVideoFilter parent;
};

struct Yuy2PackerClass {
    GstVideoFilterClass parent;
};

constexpr auto kFactory = "ql240yuy2packer";
constexpr auto kPacked = "YUY2";
constexpr const char* kPlanar[] = {"I420", "Y42B"};

G_DEFINE_TYPE(Yuy2Packer, yuy2_packer, GST_TYPE_VIDEO_FILTER)

bool isPlanar(const char* format) {
    return std::strcmp(format, kPlanar[0]) == 0 || std::strcmp(format, kPlanar[1]) == 0;
}

// Transforms one format. Sink to source: planar formats become YUY2; source to sink: YUY2 may come from any
// of these.
void appendTransformed(const GstStructure* structure, const char* format, GstPadDirection direction,
                       GstCaps* result) {
    const auto append = [&](const char* other) {
        GstStructure* copy = gst_structure_copy(structure);
        gst_structure_set(copy, "format", G_TYPE_STRING, other, nullptr);
        gst_caps_append_structure(result, copy);
    };
    if (direction == GST_PAD_SINK) {
        append(isPlanar(format) ? kPacked : format);
    } else if (std::strcmp(format, kPacked) == 0) {
        for (const char* planar : kPlanar)
            append(planar);
        append(kPacked);
    } else if (!isPlanar(format)) {
        append(format);
    }
}

GstCaps* transformCaps(GstBaseTransform*, GstPadDirection direction, GstCaps* caps, GstCaps* filter) {
    GstCaps* result = gst_caps_new_empty();
    for (guint i = 0; i < gst_caps_get_size(caps); ++i) {
        const GstStructure* structure = gst_caps_get_structure(caps, i);
        const GValue* formats = gst_structure_get_value(structure, "format");
        if (formats && G_VALUE_HOLDS_STRING(formats)) {
            appendTransformed(structure, g_value_get_string(formats), direction, result);
        } else if (formats && GST_VALUE_HOLDS_LIST(formats)) {
            for (guint k = 0; k < gst_value_list_get_size(formats); ++k)
                appendTransformed(structure, g_value_get_string(gst_value_list_get_value(formats, k)),
                                  direction, result);
        } else {
            gst_caps_append_structure(result, gst_structure_copy(structure));
        }
    }
    result = gst_caps_simplify(result);
    if (!filter)
        return result;
    GstCaps* common = gst_caps_intersect_full(filter, result, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(result);
    return common;
}

// Checks the size that the decoder reports. A decoder with its own frame buffers may have allocated some
// before this.
gboolean takeSize(GstVideoFilter*, GstCaps*, GstVideoInfo* in, GstCaps*, GstVideoInfo*) {
    return !ql240::limits::isPictureTooLarge(GST_VIDEO_INFO_WIDTH(in), GST_VIDEO_INFO_HEIGHT(in));
}

GstFlowReturn packFrame(GstVideoFilter*, GstVideoFrame* in, GstVideoFrame* out) {
    const auto plane = [](GstVideoFrame* frame, guint i) {
        return static_cast<std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(frame, i));
    };
    const auto stride = [](GstVideoFrame* frame, guint i) { return GST_VIDEO_FRAME_PLANE_STRIDE(frame, i); };
    const auto pack =
        GST_VIDEO_FRAME_FORMAT(in) == GST_VIDEO_FORMAT_I420 ? libyuv::I420ToYUY2 : libyuv::I422ToYUY2;
    pack(plane(in, 0), stride(in, 0), plane(in, 1), stride(in, 1), plane(in, 2), stride(in, 2), plane(out, 0),
         stride(out, 0), GST_VIDEO_FRAME_WIDTH(in), GST_VIDEO_FRAME_HEIGHT(in));
    return GST_FLOW_OK;
}

gboolean proposeAllocation(GstBaseTransform* transform, GstQuery* decideQuery, GstQuery* query) {
    const auto allocator = ql240::gstreamer::newFrameAllocator(GST_OBJECT_PARENT(transform));
    gst_query_add_allocation_param(query, allocator.get(), nullptr);
    return GST_BASE_TRANSFORM_CLASS(yuy2_packer_parent_class)
        ->propose_allocation(transform, decideQuery, query);
}

void yuy2_packer_class_init(Yuy2PackerClass* klass) {
    GstElementClass* element = GST_ELEMENT_CLASS(klass);
    const ql240::gstreamer::CapsHandle any(gst_caps_from_string("video/x-raw"));
    gst_element_class_add_pad_template(element,
                                       gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, any.get()));
    gst_element_class_add_pad_template(element,
                                       gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, any.get()));
    gst_element_class_set_static_metadata(element, "YUY2 packer", "Filter/Converter/Video",
                                          "Packs planar frames", "QL240 Viewer");
    GST_BASE_TRANSFORM_CLASS(klass)->transform_caps = transformCaps;
    GST_BASE_TRANSFORM_CLASS(klass)->propose_allocation = proposeAllocation;
    GST_BASE_TRANSFORM_CLASS(klass)->passthrough_on_same_caps = TRUE;
    GST_VIDEO_FILTER_CLASS(klass)->set_info = takeSize;
    GST_VIDEO_FILTER_CLASS(klass)->transform_frame = packFrame;
}

void yuy2_packer_init(Yuy2Packer* packer) {
    gst_base_transform_set_qos_enabled(GST_BASE_TRANSFORM(packer), FALSE);
}

} // namespace

namespace ql240::gstreamer {

const char* yuy2PackerFactory() {
    static const bool registered =
        gst_element_register(nullptr, kFactory, GST_RANK_NONE, yuy2_packer_get_type());
    return registered ? kFactory : "identity";
}

} // namespace ql240::gstreamer
