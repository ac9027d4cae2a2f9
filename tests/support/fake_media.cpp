#include "support/fake_media.h"

#include <algorithm>
#include <utility>

#include "platform/gstreamer/com_object.h"
#include "support/fake_filters.h"

namespace ql240 {

namespace {

using namespace fake;

const QString kGraphSize = QStringLiteral("graph size");

class FakeGraph final
    : public gstreamer::ComObject<IGraphBuilder, IMediaControl, IMediaSeeking, IBasicVideo> {
public:
    explicit FakeGraph(FakeMedia& media) : m_media(media), m_counted(media) {}
    ~FakeGraph() override { m_media.log += QStringLiteral("graph gone"); }

    Status AddFilter(IBaseFilter* filter, const char16_t* name) override {
        QString given = QString::fromUtf16(name);
        const Status status = m_media.call(QStringLiteral("add ") + given);
        if (failed(status))
            return status;
        for (int i = 2; m_media.filters.contains(given); ++i)
            given = QString::fromUtf16(name) + QStringLiteral(" %1").arg(i);
        nameFilter(*filter, given);
        m_media.filters += given;
        m_filters.emplace_back(filter);
        return status;
    }
    Status ConnectDirect(IPin* output, IPin* input, const MediaType* type) override {
        const bool fits = !type && canJoin(output, input);
        const Status status =
            m_media.call(QStringLiteral("join %1 > %2").arg(pinText(output), pinText(input)),
                         fits ? kStatusOk : kStatusCannotConnect);
        if (succeeded(status))
            join(*output, *input);
        return status;
    }
    Status Render(IPin* output) override {
        return m_media.call(QStringLiteral("render ") + pinText(output),
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
        *current = m_media.transport.position;
        *stop = m_media.transport.duration;
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
    Status SetRate(double rate) override {
        const Status status = m_media.call(QStringLiteral("rate %1").arg(rate));
        if (succeeded(status))
            m_media.transport.rate = rate;
        return status;
    }
    Status GetVideoSize(std::int32_t* width, std::int32_t* height) override {
        for (const auto& filter : m_filters) {
            if (const auto video = filter.as<IBasicVideo>(); video && succeeded(m_media.query(kGraphSize)))
                return video->GetVideoSize(width, height);
        }
        return m_media.query(kGraphSize, kStatusNotConnected);
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
    return log.size() - 1 == answerAt ? answer : query(text, usual);
}

void FakeMedia::setOutputVolume(std::uint16_t left, std::uint16_t right) {
    call(QStringLiteral("volume %1 %2").arg(left).arg(right));
}

ComPtr<IUnknown> FakeMedia::newGraph() {
    filters.clear();
    transport = {.duration = clip.durationMs * 10000};
    windows = {};
    grabbers = {};
    m_streamsMade = {};
    return ComPtr<IUnknown>(static_cast<IGraphBuilder*>(new FakeGraph(*this)));
}

Status FakeMedia::CoCreateInstance(const Guid& classId, IUnknown*, ClassContext context, const Guid& iid,
                                   void** object) {
    *object = nullptr;
    const bool isGraph = classId == guid("{E436EBB3-524F-11CE-9F53-0020AF0BA770}");
    const Class* known = findClass(classId);
    if (!isGraph && !known)
        return call(QStringLiteral("create unknown"), kStatusClassNotRegistered);
    const bool fits = context == (isGraph ? ClassContext::InprocServer : ClassContext::All);
    const Status status =
        call(QStringLiteral("create ") + (isGraph ? QStringLiteral("graph") : className(*known)),
             fits ? kStatusOk : kStatusInvalidArgument);
    if (failed(status))
        return status;
    if (isGraph)
        return newGraph()->QueryInterface(iid, object);
    return makeFilter(*this, *known, m_streamsMade)->QueryInterface(iid, object);
}

std::vector<std::uint8_t> FakeMedia::deliver(int stream, std::vector<std::uint8_t> frame, double time) {
    FakeGrabber& grabber = grabbers[static_cast<std::size_t>(stream)];
    if (grabber.callback)
        mayFail(grabber.callback->BufferCB(time, frame.data(), static_cast<std::int32_t>(frame.size())));
    grabber.kept = frame;
    return frame;
}

} // namespace ql240
