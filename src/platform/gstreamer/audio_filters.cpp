#include "platform/gstreamer/audio_filters.h"

#include <algorithm>

#include "platform/gstreamer/codec_table.h"
#include "platform/gstreamer/sound_output.h"

namespace ql240::gstreamer {

namespace {

constexpr GstClockTime kQueueTime = 3 * GST_SECOND;

struct Outputs {
    double volume = 1.0;
    std::vector<GstElement*> elements;
};

Outputs& outputs() {
    static Outputs all;
    return all;
}

} // namespace

AudioDecoder::AudioDecoder() {
    addPin(u"In", PinDirection::Input);
    addPin(u"Out", PinDirection::Output);
}

Status AudioDecoder::prepareInput(Pin& input, const Pin& upstream) {
    bool known = false;
    std::vector<const char*> factories = decoderChain(upstream.caps().get(), &known);
    if (!known)
        return kStatusTypeNotAccepted;
    factories.insert(factories.begin(), "queue");
    factories.push_back("audioconvert");
    const auto chain = addChain(factories);
    if (chain.empty())
        return kStatusClassNotRegistered;
    g_object_set(chain.front(), "max-size-time", kQueueTime, "max-size-bytes", 0U, "max-size-buffers", 0U,
                 nullptr);
    input.setPad(staticPad(chain.front(), "sink"));
    outputPin()->setPad(staticPad(chain.back(), "src"));
    return kStatusOk;
}

AudioRenderer::AudioRenderer() {
    ElementHandle output = openSoundOutput();
    if (!output)
        return;
    const auto chain = addChain({"audioresample", "volume"}, std::move(output));
    if (chain.empty())
        return;
    m_volume = chain[1];
    outputs().elements.push_back(m_volume);
    g_object_set(m_volume, "volume", outputs().volume, nullptr);
    addPin(u"Audio Input pin (rendered)", PinDirection::Input).setPad(staticPad(chain.front(), "sink"));
}

AudioRenderer::~AudioRenderer() {
    auto& elements = outputs().elements;
    elements.erase(std::remove(elements.begin(), elements.end(), m_volume), elements.end());
}

bool AudioRenderer::contains(GstObject* object) const {
    return std::any_of(elements().begin(), elements().end(), [object](const ElementHandle& element) {
        return gst_object_has_as_ancestor(object, GST_OBJECT(element.get())) ||
               object == GST_OBJECT(element.get());
    });
}

void AudioRenderer::setVolume(double volume) {
    outputs().volume = volume;
    for (GstElement* element : outputs().elements)
        g_object_set(element, "volume", volume, nullptr);
}

} // namespace ql240::gstreamer
