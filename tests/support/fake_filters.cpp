#include "support/fake_filters.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <tuple>
#include <utility>

#include "platform/gstreamer/com_object.h"

namespace ql240::fake {

namespace {

using gstreamer::ComObject;

enum class Kind { Source, AviSplitter, Mp4Splitter, Decoder, Grabber, Converter, Renderer, Sound, Speaker };

} // namespace

struct Class {
    Kind kind;
    Guid id;
    const char* name;
    std::vector<std::u16string> inputs;
    std::vector<std::u16string> outputs; // a splitter's come from the clip
};

namespace {

const Class kClasses[] = {
    {Kind::Source, guid("{E436EBB5-524F-11CE-9F53-0020AF0BA770}"), "file source", {}, {u"Output"}},
    {Kind::AviSplitter, guid("{1B544C20-FD0B-11CE-8C63-00AA0044B51E}"), "AVI splitter", {u"Input pin"}, {}},
    {Kind::Mp4Splitter, guid("{25462A40-E574-4A61-A715-18EADC6B650C}"), "MP4 splitter", {u"Input"}, {}},
    {Kind::Decoder, guid("{EC00D4BF-FEC2-40F8-AE73-AE0798E15C73}"), "video decoder", {u"In"}, {u"Out"}},
    {Kind::Grabber, guid("{C1F400A0-3F08-11D3-9F0B-006008039E37}"), "grabber", {u"Input"}, {u"Output"}},
    {Kind::Converter,
     guid("{CF49D4E0-1115-11CE-B03A-0020AF0BA770}"),
     "converter",
     {u"XForm In"},
     {u"XForm Out"}},
    {Kind::Renderer, guid("{B87BEB7B-8D29-423F-AE4D-6582C10175AC}"), "video renderer", {u"VMR Input0"}, {}},
    {Kind::Sound, guid("{2EEB4ADF-4578-4D10-BCA7-BB955F56320A}"), "audio decoder", {u"In"}, {u"Out"}},
    {Kind::Speaker,
     guid("{79376820-07D0-11CF-A24D-0020AFD79767}"),
     "sound output",
     {u"Audio Input pin (rendered)"},
     {}},
};

class FakeFilter;

// Reference-counted together with its filter.
class FakePin final : public IPin {
public:
    FakePin(FakeFilter& owner, std::u16string pinName, PinDirection pinDirection)
        : filter(owner), name(std::move(pinName)), direction(pinDirection) {}
    Status QueryInterface(const Guid&, void** object) override {
        *object = nullptr;
        return kStatusNoInterface;
    }
    std::uint32_t AddRef() override;
    std::uint32_t Release() override;
    Status QueryPinInfo(PinInfo* info) override {
        *info = {name, direction};
        return kStatusOk;
    }
    QString text() const;

    FakeFilter& filter;
    const std::u16string name;
    const PinDirection direction;
    bool joined = false;
};

class FakeFilter final
    : public ComObject<IBaseFilter, IFileSourceFilter, ISampleGrabber, IBasicVideo, IVideoWindow> {
    using Base = ComObject<IBaseFilter, IFileSourceFilter, ISampleGrabber, IBasicVideo, IVideoWindow>;

public:
    FakeFilter(FakeMedia& media, const Class& made, int stream)
        : kind(made.kind), m_media(media), m_stream(stream), m_counted(media) {
        addPins(made.inputs, PinDirection::Input);
        addPins(made.outputs, PinDirection::Output);
    }

    void addPins(const std::vector<std::u16string>& names, PinDirection direction) {
        for (const auto& pinName : names)
            pins.push_back(std::make_unique<FakePin>(*this, pinName, direction));
    }
    // A splitter exposes its streams when its input is connected.
    void inputJoined() {
        if (kind == Kind::AviSplitter)
            addPins(m_media.clip.aviPins, PinDirection::Output);
        if (kind == Kind::Mp4Splitter)
            addPins(m_media.clip.mp4Pins, PinDirection::Output);
    }

    Status QueryInterface(const Guid& iid, void** object) override {
        const bool has = iid == IUnknown::kIid || iid == IBaseFilter::kIid ||
                         (iid == IFileSourceFilter::kIid && kind == Kind::Source) ||
                         (iid == ISampleGrabber::kIid && kind == Kind::Grabber) ||
                         ((iid == IBasicVideo::kIid || iid == IVideoWindow::kIid) && kind == Kind::Renderer);
        *object = nullptr;
        return has ? Base::QueryInterface(iid, object) : kStatusNoInterface;
    }
    Status EnumPins(IEnumPins** list) override;
    Status Load(const char16_t* path, const MediaType* type) override {
        return m_media.call(QStringLiteral("load ") + QString::fromUtf16(path) +
                            QLatin1String(type ? " typed" : ""));
    }

    Status SetMediaType(const MediaType* type) override {
        return change("media type", [=](FakeGrabber& grabber) { grabber.type = *type; });
    }
    Status SetBufferSamples(bool buffer) override {
        return change(buffer ? "buffers" : "no buffers",
                      [=](FakeGrabber& grabber) { grabber.keeps = buffer; });
    }
    Status SetCallback(ISampleGrabberCB* callback, GrabberCallback callbackKind) override {
        const char* mode = callbackKind == GrabberCallback::Buffer ? "buffer" : "sample";
        return change(
            callback ? mode : "none", [=](FakeGrabber& grabber) { grabber.callback = callback; }, "callback");
    }
    Status GetConnectedMediaType(MediaType* type) override {
        *type = grabber().type;
        return m_media.query(QStringLiteral("type %1").arg(m_stream));
    }
    Status GetCurrentBuffer(std::int32_t* size, std::uint8_t* buffer) override {
        const auto& kept = grabber().kept;
        const Status usual = kept.empty() || !grabber().keeps ? kStatusWrongState : kStatusOk;
        const Status status =
            m_media.query(QString::fromLatin1(buffer ? "fetch %1" : "buffer %1").arg(m_stream), usual);
        if (succeeded(status) && buffer)
            std::copy(kept.begin(), kept.end(), buffer);
        *size = static_cast<std::int32_t>(kept.size());
        return status;
    }

    Status GetVideoSize(std::int32_t* width, std::int32_t* height) override {
        const QSize size = m_media.clip.sizes[at()];
        const Status usual = pins.front()->joined ? kStatusOk : kStatusNotConnected;
        const Status status = m_media.query(QStringLiteral("size %1").arg(m_stream), usual);
        if (succeeded(status))
            std::tie(*width, *height) = std::pair(size.width(), size.height());
        return status;
    }

    Status put_AutoShow(bool show) override {
        return put("autoshow", show, [=](FakeWindow& w) { w.autoShow = show; });
    }
    Status put_Owner(WindowToken owner) override {
        return put("owner", owner != WindowToken::None, [=](FakeWindow& w) { w.owner = owner; });
    }
    Status put_WindowStyle(std::uint32_t style) override {
        return put("style", QString::number(style, 16), [=](FakeWindow& w) { w.style = style; });
    }
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

    const Kind kind;
    QString name; // in the graph
    std::vector<std::unique_ptr<FakePin>> pins;

private:
    std::size_t at() const { return static_cast<std::size_t>(m_stream); }
    FakeGrabber& grabber() { return m_media.grabbers[at()]; }

    template <typename Change>
    Status change(const char* what, Change&& apply, const char* prefix = "grabber") {
        const Status status = m_media.call(
            QStringLiteral("%1 %2 %3").arg(QLatin1String(prefix)).arg(m_stream).arg(QLatin1String(what)));
        if (succeeded(status))
            apply(grabber());
        return status;
    }
    template <typename Value, typename Change>
    Status put(const char* what, const Value& value, Change&& apply) {
        const Status status =
            m_media.call(QStringLiteral("window %1 %2 %3").arg(m_stream).arg(QLatin1String(what)).arg(value));
        if (succeeded(status))
            apply(m_media.windows[at()]);
        return status;
    }

    FakeMedia& m_media;
    const int m_stream; // of a grabber or renderer
    Counted m_counted;
};

std::uint32_t FakePin::AddRef() {
    return filter.AddRef();
}

std::uint32_t FakePin::Release() {
    return filter.Release();
}

QString FakePin::text() const {
    return filter.name + QLatin1Char(':') + QString::fromStdU16String(name);
}

class FakePins final : public ComObject<IEnumPins> {
public:
    FakePins(FakeMedia& media, FakeFilter* filter) : m_filter(filter), m_counted(media) {}
    Status Next(std::uint32_t count, IPin** pins, std::uint32_t* fetched) override {
        for (*fetched = 0; *fetched < count && m_next < m_filter->pins.size(); ++*fetched) {
            pins[*fetched] = m_filter->pins[m_next++].get();
            pins[*fetched]->AddRef();
        }
        return *fetched == count ? kStatusOk : Status{1};
    }

private:
    ComPtr<FakeFilter> m_filter;
    std::size_t m_next = 0;
    Counted m_counted;
};

Status FakeFilter::EnumPins(IEnumPins** list) {
    const Status status = m_media.query(QStringLiteral("pins"));
    *list = failed(status) ? nullptr : new FakePins(m_media, this);
    if (*list)
        (*list)->AddRef();
    return status;
}

} // namespace

const Class* findClass(const Guid& id) {
    const auto* known =
        std::find_if(std::begin(kClasses), std::end(kClasses), [&](const Class& c) { return c.id == id; });
    return known == std::end(kClasses) ? nullptr : known;
}

QString className(const Class& known) {
    return QLatin1String(known.name);
}

ComPtr<IBaseFilter> makeFilter(FakeMedia& media, const Class& known, std::array<int, 2>& streams) {
    int stream = 0;
    if (known.kind == Kind::Grabber || known.kind == Kind::Renderer)
        stream = streams[known.kind == Kind::Renderer]++;
    return ComPtr<IBaseFilter>(new FakeFilter(media, known, stream));
}

void nameFilter(IBaseFilter& filter, const QString& name) {
    static_cast<FakeFilter&>(filter).name = name;
}

QString pinText(IPin* pin) {
    return pin ? static_cast<FakePin*>(pin)->text() : QStringLiteral("nothing");
}

bool canJoin(IPin* output, IPin* input) {
    const auto* from = static_cast<FakePin*>(output);
    const auto* to = static_cast<FakePin*>(input);
    return from && to && from->direction == PinDirection::Output && to->direction == PinDirection::Input &&
           !from->joined && !to->joined;
}

void join(IPin& output, IPin& input) {
    auto& to = static_cast<FakePin&>(input);
    static_cast<FakePin&>(output).joined = to.joined = true;
    to.filter.inputJoined();
}

} // namespace ql240::fake
