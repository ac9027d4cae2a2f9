#include "platform/gstreamer/gst_media_platform.h"

#include <gst/gst.h>

#include "platform/gstreamer/audio_filters.h"
#include "platform/gstreamer/graph.h"
#include "platform/gstreamer/sound_output.h"
#include "platform/gstreamer/source_filters.h"
#include "platform/gstreamer/video_filters.h"

namespace ql240::gstreamer {

namespace {

template <typename Object, typename... Arguments>
IUnknown* make(Arguments... arguments) {
    auto* object = new Object(arguments...);
    if constexpr (std::is_same_v<Object, Graph>)
        return static_cast<IUnknown*>(static_cast<IGraphBuilder*>(object));
    else
        return static_cast<IUnknown*>(static_cast<IBaseFilter*>(object));
}

IUnknown* makeAviSplitter() {
    return make<Splitter>(Container::Avi);
}

IUnknown* makeMp4Splitter() {
    return make<Splitter>(Container::Mp4);
}

struct Class {
    Guid id;
    IUnknown* (*make)();
    const char* element; // an element of the plugin that the class needs; null: none
};

constexpr Class kClasses[] = {
    {class_id::kFilterGraph, make<Graph>, nullptr},
    {class_id::kFileSource, make<FileSource>, "filesrc"},
    {class_id::kAviSplitter, makeAviSplitter, "avidemux"},
    {class_id::kMp4Splitter, makeMp4Splitter, "qtdemux"},
    {class_id::kVideoDecoder, make<VideoDecoder>, "videoconvert"},
    {class_id::kSampleGrabber, make<SampleGrabber>, "capsfilter"},
    {class_id::kColourConverter, make<ColourConverter>, "identity"},
    {class_id::kVideoRenderer, make<VideoRenderer>, "appsink"},
    {class_id::kAudioDecoder, make<AudioDecoder>, "audioconvert"},
    {class_id::kAudioRenderer, make<AudioRenderer>, "autoaudiosink"},
};

// The elements for a usual clip: loading their plugins takes longest.
constexpr const char* kUsualElements[] = {"filesrc",      "qtdemux",       "queue",     "h264parse",
                                          "avdec_h264",   "aacparse",      "avdec_aac", "videoconvert",
                                          "audioconvert", "capsfilter",    "appsink",   "audioresample",
                                          "volume",       "autoaudiosink", "identity"};

bool hasElement(const char* name) {
    GstElementFactory* factory = gst_element_factory_find(name);
    if (factory)
        gst_object_unref(factory);
    return factory != nullptr;
}

} // namespace

GstMediaPlatform::~GstMediaPlatform() {
    if (m_warmUp.joinable())
        m_warmUp.join();
}

Status GstMediaPlatform::CoCreateInstance(const Guid& classId, IUnknown*, ClassContext, const Guid& iid,
                                          void** object) {
    *object = nullptr;
    if (!gst_init_check(nullptr, nullptr, nullptr))
        return kStatusFail;
    for (const Class& known : kClasses) {
        if (known.id != classId)
            continue;
        if (known.element && !hasElement(known.element))
            return kStatusClassNotRegistered;
        IUnknown* made = known.make();
        made->AddRef();
        const Status status = made->QueryInterface(iid, object);
        made->Release();
        return status;
    }
    return kStatusClassNotRegistered;
}

void GstMediaPlatform::warmUp() {
    if (m_warmUp.joinable())
        return;
    m_warmUp = std::thread([] {
        if (!gst_init_check(nullptr, nullptr, nullptr))
            return;
        for (const char* name : kUsualElements)
            ElementHandle unused = makeElement(name);
    });
}

void GstMediaPlatform::setOutputVolume(std::uint16_t left, std::uint16_t right) {
    SoundOutput::setVolume((left + right) / (2.0 * 0xFFFF));
}

} // namespace ql240::gstreamer
