#include "playback/graph_recipe.h"

#include <QStringView>

#include <algorithm>
#include <utility>

#include "platform/logging.h"
#include "platform/media_platform.h"

namespace ql240 {

namespace {

namespace filter_name {

constexpr auto kSource = u"File Source (Async.)";
constexpr auto kAviSplitter = u"AVI Splitter";
constexpr auto kMp4Splitter = u"B2 - Splitter";
constexpr auto kVideoDecoder = u"ffdshow Video Decoder";
constexpr auto kGrabber = u"SampleGrabber";
constexpr auto kConverter = u"AVI Decompressor";
constexpr std::array kRenderer = {u"Video Renderer", u"Video Renderer 0003"};
constexpr auto kAudioDecoder = u"Audio Decoder";
constexpr auto kAudioRenderer = u"Default DirectSound Device";

} // namespace filter_name

namespace pin_name {

constexpr auto kSourceOut = u"Output";
constexpr auto kAviIn = u"Input pin";
constexpr auto kAviVideo = u"Stream 00";
constexpr auto kAviSound = u"Stream 01";
constexpr auto kMp4In = u"Input";
constexpr auto kMp4Video = u"vide";
constexpr auto kMp4Sound = u"soun";
constexpr auto kDecoderIn = u"In";
constexpr auto kDecoderOut = u"Out";
constexpr auto kGrabberIn = u"Input";
constexpr auto kGrabberOut = u"Output";
constexpr auto kConverterIn = u"XForm In";
constexpr auto kConverterOut = u"XForm Out";
constexpr auto kRendererIn = u"VMR Input0";
constexpr auto kSoundIn = u"Audio Input pin (rendered)";

} // namespace pin_name

constexpr MediaType kGrabbedType{kMediaTypeVideo, kMediaSubtypeYuy2, Guid{}};

// Runs steps until one fails; remembers its status.
class Steps {
public:
    template <typename Step>
    Steps& then(Step&& step) {
        if (!failed(m_status))
            m_status = std::forward<Step>(step)();
        return *this;
    }
    Status status() const { return failed(m_status) ? m_status : kStatusOk; }

private:
    Status m_status = kStatusOk;
};

// Calls visit(pin, info) for the filter's pins in order until it returns false or a call fails.
template <typename Visit>
void visitPins(IBaseFilter& filter, Visit&& visit) {
    ComPtr<IEnumPins> pins;
    if (failed(filter.EnumPins(pins.put())) || !pins)
        return;
    for (;;) {
        ComPtr<IPin> pin;
        std::uint32_t fetched = 0;
        if (failed(pins->Next(1, pin.put(), &fetched)) || fetched != 1)
            return;
        PinInfo info;
        if (succeeded(pin->QueryPinInfo(&info)) && !visit(pin, info))
            return;
    }
}

bool sameName(std::u16string_view a, std::u16string_view b) {
    return QStringView(a).compare(QStringView(b), Qt::CaseInsensitive) == 0;
}

// Logs the status of a step and returns it.
Status logged(const char* step, std::u16string_view name, Status status) {
    qCDebug(lcMedia) << "recipe:" << step << QStringView(name) << Qt::hex << Qt::showbase
                     << static_cast<std::uint32_t>(status);
    return status;
}

NamedPin pinOf(IBaseFilter& filter, const char16_t* name, int skip = 0) {
    return {findPinByName(filter, name, skip), name};
}

Status join(IGraphBuilder& graph, const NamedPin& output, const NamedPin& input) {
    const Status status = graph.ConnectDirect(output.pin.get(), input.pin.get(), nullptr);
    return logged("join", std::u16string(output.name) + u" to " + input.name, status);
}

} // namespace

ComPtr<IPin> findPinByName(IBaseFilter& filter, std::u16string_view name, int skip) {
    ComPtr<IPin> found;
    visitPins(filter, [&](const ComPtr<IPin>& pin, const PinInfo& info) {
        if (sameName(info.name, name) && skip-- == 0)
            found = pin;
        return !found;
    });
    return found;
}

int countPinsByName(IBaseFilter& filter, std::u16string_view name) {
    int count = 0;
    visitPins(filter, [&](const ComPtr<IPin>&, const PinInfo& info) {
        count += sameName(info.name, name) ? 1 : 0;
        return true;
    });
    return count;
}

Status GraphRecipe::addFilter(IGraphBuilder& graph, const Guid& classId, const char16_t* name,
                              ComPtr<IBaseFilter>& slot) {
    const Status status =
        m_platform.CoCreateInstance(classId, nullptr, ClassContext::All, IBaseFilter::kIid, slot.putVoid());
    return logged("filter", name, failed(status) ? status : graph.AddFilter(slot.get(), name));
}

Status GraphRecipe::addSource(IGraphBuilder& graph, const std::u16string& path) {
    const Status status = addFilter(graph, class_id::kFileSource, filter_name::kSource, m_source);
    if (failed(status))
        return status;
    const auto file = m_source.as<IFileSourceFilter>();
    return logged("load", path, file ? file->Load(path.c_str(), nullptr) : kStatusNoInterface);
}

Status GraphRecipe::addGrabber(IGraphBuilder& graph, int index) {
    auto& slot = m_video[static_cast<std::size_t>(index)].grabber;
    const Status status = addFilter(graph, class_id::kSampleGrabber, filter_name::kGrabber, slot);
    if (failed(status))
        return status;
    const auto grabber = slot.as<ISampleGrabber>();
    if (!grabber)
        return kStatusNoInterface;
    const Status typed = grabber->SetMediaType(&kGrabbedType);
    return logged("picture format", {}, failed(typed) ? typed : grabber->SetBufferSamples(true));
}

Status GraphRecipe::joinVideoChain(IGraphBuilder& graph, int index, const NamedPin& source) {
    using namespace pin_name;
    auto& [decoder, grabber, converter, renderer] = m_video[static_cast<std::size_t>(index)];
    return Steps()
        .then([&] { return join(graph, source, pinOf(*decoder.get(), kDecoderIn)); })
        .then([&] {
            return join(graph, pinOf(*decoder.get(), kDecoderOut), pinOf(*grabber.get(), kGrabberIn));
        })
        .then([&] {
            return join(graph, pinOf(*grabber.get(), kGrabberOut), pinOf(*converter.get(), kConverterIn));
        })
        .then([&] {
            return join(graph, pinOf(*converter.get(), kConverterOut), pinOf(*renderer.get(), kRendererIn));
        })
        .status();
}

Status GraphRecipe::buildAvi(IGraphBuilder& graph, const std::u16string& path) {
    using namespace filter_name;
    auto& video = m_video[0];
    return Steps()
        .then([&] { return addSource(graph, path); })
        .then([&] { return addFilter(graph, class_id::kAviSplitter, kAviSplitter, m_splitter); })
        .then([&] { return addFilter(graph, class_id::kVideoDecoder, kVideoDecoder, video.decoder); })
        .then([&] { return addFilter(graph, class_id::kVideoRenderer, kRenderer[0], video.renderer); })
        .then([&] { return addGrabber(graph, 0); })
        .then([&] { return addFilter(graph, class_id::kColourConverter, kConverter, video.converter); })
        .then([&] {
            return join(graph, pinOf(*m_source.get(), pin_name::kSourceOut),
                        pinOf(*m_splitter.get(), pin_name::kAviIn));
        })
        .then([&] { return joinVideoChain(graph, 0, pinOf(*m_splitter.get(), pin_name::kAviVideo)); })
        .then([&] {
            const NamedPin sound = pinOf(*m_splitter.get(), pin_name::kAviSound);
            return logged("render", sound.name, graph.Render(sound.pin.get()));
        })
        .status();
}

Status GraphRecipe::addMp4Filters(IGraphBuilder& graph) {
    using namespace filter_name;
    Steps steps;
    steps.then([&] { return addFilter(graph, class_id::kAudioDecoder, kAudioDecoder, m_audioDecoder); })
        .then([&] { return addFilter(graph, class_id::kAudioRenderer, kAudioRenderer, m_audioRenderer); });
    for (auto& video : m_video)
        steps.then([&] { return addFilter(graph, class_id::kVideoDecoder, kVideoDecoder, video.decoder); });
    for (std::size_t i = 0; i < m_video.size(); ++i)
        steps.then(
            [&] { return addFilter(graph, class_id::kVideoRenderer, kRenderer[i], m_video[i].renderer); });
    for (int i = 0; i < kMaxStreams; ++i) {
        auto& converter = m_video[static_cast<std::size_t>(i)].converter;
        steps.then([&] { return addGrabber(graph, i); }).then([&] {
            return addFilter(graph, class_id::kColourConverter, kConverter, converter);
        });
    }
    return steps.status();
}

Status GraphRecipe::buildMp4(IGraphBuilder& graph, const std::u16string& path) {
    using namespace pin_name;
    Steps steps;
    steps.then([&] { return addSource(graph, path); })
        .then([&] { return addFilter(graph, class_id::kMp4Splitter, filter_name::kMp4Splitter, m_splitter); })
        .then(
            [&] { return join(graph, pinOf(*m_source.get(), kSourceOut), pinOf(*m_splitter.get(), kMp4In)); })
        .then([&] {
            m_videoStreamCount = countPinsByName(*m_splitter.get(), kMp4Video);
            return logged("video streams", QString::number(m_videoStreamCount).toStdU16String(),
                          m_videoStreamCount == 0 ? kStatusFail : kStatusOk);
        })
        .then([&] { return addMp4Filters(graph); })
        .then([&] {
            return join(graph, pinOf(*m_splitter.get(), kMp4Sound), pinOf(*m_audioDecoder.get(), kDecoderIn));
        })
        .then([&] {
            return join(graph, pinOf(*m_audioDecoder.get(), kDecoderOut),
                        pinOf(*m_audioRenderer.get(), kSoundIn));
        });
    for (int i = 0; i < std::min(m_videoStreamCount, kMaxStreams); ++i)
        steps.then([&] { return joinVideoChain(graph, i, pinOf(*m_splitter.get(), kMp4Video, i)); });
    return steps.status();
}

ComPtr<IBaseFilter> GraphRecipe::takeGrabber(int index) {
    return std::exchange(m_video[static_cast<std::size_t>(index)].grabber, nullptr);
}

ComPtr<IBaseFilter> GraphRecipe::takeRenderer(int index) {
    return std::exchange(m_video[static_cast<std::size_t>(index)].renderer, nullptr);
}

} // namespace ql240
