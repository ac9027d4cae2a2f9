#include "support/fake_media.h"

#include <algorithm>
#include <functional>
#include <memory>

#include "platform/gstreamer/com_object.h"

namespace ql240 {
namespace {

using gstreamer::ComObject;

struct Class {
    Guid id;
    const char* name;
    std::vector<std::u16string> inputs;
    std::vector<std::u16string> outputs; // the splitters' are the clip's
};

const std::vector<Class> kClasses{
    {class_id::kFilterGraph, "graph", {}, {}},
    {class_id::kFileSource, "file source", {}, {u"Output"}},
    {class_id::kAviSplitter, "AVI splitter", {u"Input pin"}, {}},
    {class_id::kMp4Splitter, "MP4 splitter", {u"Input"}, {}},
    {class_id::kVideoDecoder, "video decoder", {u"In"}, {u"Out"}},
    {class_id::kSampleGrabber, "grabber", {u"Input"}, {u"Output"}},
    {class_id::kColourConverter, "converter", {u"XForm In"}, {u"XForm Out"}},
    {class_id::kVideoRenderer, "video renderer", {u"VMR Input0"}, {}},
    {class_id::kAudioDecoder, "audio decoder", {u"In"}, {u"Out"}},
    {class_id::kAudioRenderer, "sound output", {u"Audio Input pin (rendered)"}, {}},
};

// Counts itself among the platform's live objects.
struct Counted {
    explicit Counted(FakeMedia& owner) : media(owner) { ++media.liveObjects; }
    ~Counted() { --media.liveObjects; }
    Q_DISABLE_COPY_MOVE(Counted)
    FakeMedia& media;
};

// Lives and is counted with its filter.
struct FakePin final : IPin {
    FakePin(IBaseFilter& owner, std::u16string pinName) : filter(owner), name(std::move(pinName)) {}
    Status QueryInterface(const Guid& iid, void** object) override {
        return filter.QueryInterface(iid, object);
    }
    std::uint32_t AddRef() override { return filter.AddRef(); }
    std::uint32_t Release() override { return filter.Release(); }
    Status QueryPinInfo(PinInfo* info) override {
        info->name = name;
        return kStatusOk;
    }

    IBaseFilter& filter;
    const std::u16string name;
    bool joined = false;
};

using Pins = std::vector<std::unique_ptr<FakePin>>;

class FakePinList final : public ComObject<IEnumPins> {
public:
    FakePinList(FakeMedia& media, IBaseFilter* filter, const Pins& pins)
        : m_filter(filter), m_pins(pins), m_counted(media) {}
    Status Next(std::uint32_t, IPin** pins, std::uint32_t* fetched) override {
        *fetched = m_next < m_pins.size() ? 1 : 0;
        if (*fetched == 0)
            return Status{1};
        pins[0] = m_pins[m_next++].get();
        pins[0]->AddRef();
        return kStatusOk;
    }

private:
    ComPtr<IBaseFilter> m_filter;
    const Pins& m_pins;
    std::size_t m_next = 0;
    Counted m_counted;
};

class FakeFilter final
    : public ComObject<IBaseFilter, IFileSourceFilter, ISampleGrabber, IBasicVideo, IVideoWindow> {
    using Base = ComObject<IBaseFilter, IFileSourceFilter, ISampleGrabber, IBasicVideo, IVideoWindow>;

public:
    FakeFilter(FakeMedia& media, const Class& known) : m_media(media), m_class(known), m_counted(media) {
        addPins(known.inputs);
        addPins(known.outputs);
        if (isA(class_id::kSampleGrabber) || isA(class_id::kVideoRenderer))
            m_stream = media.made[isA(class_id::kVideoRenderer)]++;
    }

    // A splitter shows its streams when its input is joined.
    void inputJoined() {
        if (isA(class_id::kAviSplitter))
            addPins(m_media.clip.aviPins);
        if (isA(class_id::kMp4Splitter))
            addPins(m_media.clip.mp4Pins);
    }

    Status QueryInterface(const Guid& iid, void** object) override {
        const bool isWindow = iid == IBasicVideo::kIid || iid == IVideoWindow::kIid;
        const bool has = iid == IBaseFilter::kIid ||
                         (iid == IFileSourceFilter::kIid && isA(class_id::kFileSource)) ||
                         (iid == ISampleGrabber::kIid && isA(class_id::kSampleGrabber)) ||
                         (isWindow && isA(class_id::kVideoRenderer));
        *object = nullptr;
        return has ? Base::QueryInterface(iid, object) : kStatusNoInterface;
    }
    Status EnumPins(IEnumPins** list) override {
        const Status status = m_media.query(QStringLiteral("pins"));
        *list = failed(status) ? nullptr : new FakePinList(m_media, this, m_pins);
        if (*list)
            (*list)->AddRef();
        return status;
    }
    Status Load(const char16_t* path, const MediaType* type) override {
        return m_media.call(QStringLiteral("load ") + QString::fromUtf16(path) +
                            QLatin1String(type ? " typed" : ""));
    }

    Status SetMediaType(const MediaType* type) override {
        const Status status = m_media.call(named("grabber %1 media type"));
        if (succeeded(status))
            grabber().type = *type;
        return status;
    }
    Status SetBufferSamples(bool buffer) override {
        return m_media.call(named(buffer ? "grabber %1 buffers" : "grabber %1 no buffers"));
    }
    Status SetCallback(ISampleGrabberCB* callback, GrabberCallback kind) override {
        const bool isBuffer = kind == GrabberCallback::Buffer;
        const char* mode = isBuffer ? "callback %1 buffer" : "callback %1 sample";
        const Status status = m_media.call(named(callback ? mode : "callback %1 none"));
        if (succeeded(status))
            grabber().callback = callback;
        return status;
    }
    Status GetConnectedMediaType(MediaType* type) override {
        *type = grabber().type;
        return m_media.query(named("type %1"));
    }
    Status GetCurrentBuffer(std::int32_t* size, std::uint8_t* buffer) override {
        const auto& kept = grabber().kept;
        const Status usual = kept.empty() ? kStatusWrongState : kStatusOk;
        const Status status = m_media.query(named(buffer ? "fetch %1" : "buffer %1"), usual);
        if (succeeded(status) && buffer)
            std::copy(kept.begin(), kept.end(), buffer);
        *size = static_cast<std::int32_t>(kept.size());
        return status;
    }

    Status GetVideoSize(std::int32_t* width, std::int32_t* height) override {
        const Status usual = m_pins.front()->joined ? kStatusOk : kStatusNotConnected;
        const Status status = m_media.query(named("size %1"), usual);
        if (succeeded(status)) {
            *width = m_media.clip.sizes[m_stream].width();
            *height = m_media.clip.sizes[m_stream].height();
        }
        return status;
    }

    Status put_AutoShow(bool show) override { return put("autoshow", show); }
    Status put_Owner(WindowToken owner) override {
        return put("owner", owner != WindowToken::None, [=](FakeWindow& w) { w.owner = owner; });
    }
    Status put_WindowStyle(std::uint32_t style) override { return put("style", QString::number(style, 16)); }
    Status put_MessageDrain(WindowToken drain) override {
        return put("drain", drain != WindowToken::None, [=](FakeWindow& w) { w.drain = drain; });
    }
    Status SetWindowPosition(std::int32_t left, std::int32_t top, std::int32_t width,
                             std::int32_t height) override {
        const QString text = QStringLiteral("%1,%2 %3x%4").arg(left).arg(top).arg(width).arg(height);
        return put("position", text, [=](FakeWindow& w) { w.rect = QRect(left, top, width, height); });
    }
    Status put_Left(std::int32_t left) override {
        return put("left", left, [=](FakeWindow& w) { w.rect.moveLeft(left); });
    }
    Status put_Top(std::int32_t top) override {
        return put("top", top, [=](FakeWindow& w) { w.rect.moveTop(top); });
    }
    Status put_Width(std::int32_t width) override {
        return put("width", width, [=](FakeWindow& w) { w.rect.setWidth(width); });
    }
    Status put_Height(std::int32_t height) override {
        return put("height", height, [=](FakeWindow& w) { w.rect.setHeight(height); });
    }
    Status put_Visible(bool visible) override {
        return put("visible", visible, [=](FakeWindow& w) { w.visible = visible; });
    }

    QString name; // in the graph

private:
    bool isA(const Guid& classId) const { return m_class.id == classId; }
    FakeGrabber& grabber() { return m_media.grabbers[m_stream]; }
    QString named(const char* call) const { return QString::fromLatin1(call).arg(m_stream); }
    void addPins(const std::vector<std::u16string>& names) {
        for (const auto& pin : names)
            m_pins.push_back(std::make_unique<FakePin>(*this, pin));
    }
    template <typename Value>
    Status put(const char* what, const Value& value, const std::function<void(FakeWindow&)>& change = {}) {
        const QString text = QStringLiteral("window %1 %2 %3");
        const Status status = m_media.call(text.arg(m_stream).arg(QLatin1String(what)).arg(value));
        if (succeeded(status) && change)
            change(m_media.windows[m_stream]);
        return status;
    }

    FakeMedia& m_media;
    const Class& m_class;
    Pins m_pins;
    std::size_t m_stream = 0; // of a grabber or renderer
    Counted m_counted;
};

FakeFilter& filterOf(IPin* pin) {
    return static_cast<FakeFilter&>(static_cast<FakePin*>(pin)->filter);
}

QString textOf(IPin* pin) {
    if (!pin)
        return QStringLiteral("nothing");
    return filterOf(pin).name + QLatin1Char(':') +
           QString::fromStdU16String(static_cast<FakePin*>(pin)->name);
}

class FakeGraph final : public ComObject<IGraphBuilder, IMediaControl, IMediaSeeking, IBasicVideo> {
public:
    explicit FakeGraph(FakeMedia& media) : m_media(media), m_counted(media) {}
    ~FakeGraph() override { m_media.log += QStringLiteral("graph gone"); }

    Status AddFilter(IBaseFilter* filter, const char16_t* name) override {
        QString given = QString::fromUtf16(name);
        const Status status = m_media.call(QStringLiteral("add ") + given);
        if (failed(status))
            return status;
        for (int i = 2; m_names.contains(given); ++i)
            given = QString::fromUtf16(name) + QStringLiteral(" %1").arg(i);
        static_cast<FakeFilter*>(filter)->name = given;
        m_names += given;
        m_filters.emplace_back(filter);
        return status;
    }
    Status ConnectDirect(IPin* output, IPin* input, const MediaType* type) override {
        auto* from = static_cast<FakePin*>(output);
        auto* to = static_cast<FakePin*>(input);
        const bool fits = !type && from && to && !from->joined && !to->joined;
        const Status status = m_media.call(QStringLiteral("join %1 > %2").arg(textOf(output), textOf(input)),
                                           fits ? kStatusOk : kStatusCannotConnect);
        if (succeeded(status)) {
            from->joined = to->joined = true;
            filterOf(input).inputJoined();
        }
        return status;
    }
    Status Render(IPin* output) override {
        return m_media.call(QStringLiteral("render ") + textOf(output),
                            output ? kStatusOk : kStatusInvalidPointer);
    }

    Status Run() override { return setState("run", GraphState::Running); }
    Status Pause() override { return setState("pause", GraphState::Paused); }
    Status Stop() override { return setState("stop", GraphState::Stopped); }
    Status GetState(std::int32_t, GraphState* state) override {
        *state = m_media.transport.state;
        return m_media.query(QStringLiteral("state"));
    }

    Status SetPositions(std::int64_t* current, Positioning currentFlags, std::int64_t*,
                        Positioning stopFlags) override {
        const bool fits = currentFlags == Positioning::Absolute && stopFlags == Positioning::None;
        const Status status =
            m_media.call(QStringLiteral("seek %1").arg(*current), fits ? kStatusOk : kStatusInvalidArgument);
        const std::int64_t last = std::max<std::int64_t>(0, m_media.transport.duration - 1);
        if (succeeded(status))
            m_media.transport.position = std::clamp<std::int64_t>(*current, 0, last);
        return status;
    }
    Status GetPositions(std::int64_t* current, std::int64_t* stop) override {
        *stop = m_media.transport.duration;
        *current = m_media.transport.position;
        return m_media.query(QStringLiteral("positions"));
    }
    Status GetCurrentPosition(std::int64_t* current) override {
        *current = m_media.transport.position;
        return m_media.query(QStringLiteral("position"));
    }
    Status GetStopPosition(std::int64_t* stop) override {
        *stop = m_media.transport.duration;
        return m_media.query(QStringLiteral("duration"));
    }
    Status SetRate(double rate) override { return m_media.call(QStringLiteral("rate %1").arg(rate)); }
    Status GetVideoSize(std::int32_t* width, std::int32_t* height) override {
        const Status status = m_media.query(QStringLiteral("graph size"));
        for (const auto& filter : m_filters) {
            if (const auto video = filter.as<IBasicVideo>(); video && succeeded(status))
                return video->GetVideoSize(width, height);
        }
        return failed(status) ? status : kStatusNotConnected;
    }

private:
    Status setState(const char* what, GraphState state) {
        const Status status = m_media.call(QLatin1String(what));
        if (succeeded(status))
            m_media.transport.state = state;
        return status;
    }

    FakeMedia& m_media;
    std::vector<ComPtr<IBaseFilter>> m_filters;
    QStringList m_names;
    Counted m_counted;
};

} // namespace

Status FakeMedia::query(const QString& text, Status usual) const {
    for (const auto& [beginning, status] : answers) {
        if (text.startsWith(beginning))
            return status;
    }
    return usual;
}

Status FakeMedia::call(const QString& text, Status usual) {
    log += text;
    return log.size() - 1 == failsAt ? kStatusFail : query(text, usual);
}

Status FakeMedia::CoCreateInstance(const Guid& classId, IUnknown*, ClassContext context, const Guid& iid,
                                   void** object) {
    *object = nullptr;
    const auto known =
        std::find_if(kClasses.begin(), kClasses.end(), [&](const Class& each) { return each.id == classId; });
    const bool isGraph = known == kClasses.begin();
    const bool fits = context == (isGraph ? ClassContext::InprocServer : ClassContext::All);
    const Status status = call(QLatin1String("create ") + QLatin1String(known->name),
                               fits ? kStatusOk : kStatusInvalidArgument);
    if (failed(status))
        return status;
    if (!isGraph)
        return ComPtr<IBaseFilter>(new FakeFilter(*this, *known))->QueryInterface(iid, object);
    transport = {.duration = clip.durationMs * 10000};
    windows = {};
    grabbers = {};
    made = {};
    return ComPtr<IGraphBuilder>(new FakeGraph(*this))->QueryInterface(iid, object);
}

std::vector<std::uint8_t> FakeMedia::deliver(int stream, std::vector<std::uint8_t> frame) {
    FakeGrabber& grabber = grabbers[static_cast<std::size_t>(stream)];
    if (grabber.callback)
        mayFail(grabber.callback->BufferCB(0, frame.data(), static_cast<std::int32_t>(frame.size())));
    grabber.kept = frame;
    return frame;
}

} // namespace ql240
