#include "playback/player.h"

#include <QFileInfo>

#include <algorithm>
#include <optional>
#include <vector>

#include "clips/clip.h"
#include "platform/host.h"
#include "platform/logging.h"
#include "platform/media_platform.h"
#include "playback/graph_recipe.h"
#include "playback/image_adjust.h"
#include "playback/sample_handler.h"

namespace ql240 {

namespace {

constexpr std::int64_t kUnitsPerMs = 10000;

std::size_t at(int index) {
    return static_cast<std::size_t>(index);
}

// Two divisions in this order, each truncating: part of the defined arithmetic.
std::int64_t toMs(std::int64_t units) {
    return units / 10 / 1000;
}

bool isMp4Name(const QString& fileName) {
    return fileName.indexOf(QLatin1String(".mp4"), 0, Qt::CaseSensitive) > 0;
}

ComPtr<IGraphBuilder> newGraph(MediaPlatform& platform) {
    ComPtr<IGraphBuilder> graph;
    mayFail(platform.CoCreateInstance(class_id::kFilterGraph, nullptr, ClassContext::InprocServer,
                                      IGraphBuilder::kIid, graph.putVoid()));
    return graph;
}

std::optional<QSize> sizeOf(IBasicVideo* video) {
    std::int32_t width = 0;
    std::int32_t height = 0;
    if (!video || failed(video->GetVideoSize(&width, &height)))
        return std::nullopt;
    return QSize(width, height);
}

template <typename Interface>
ComPtr<Interface> of(const ComPtr<IBaseFilter>& filter) {
    return filter.as<Interface>();
}

} // namespace

std::int32_t Player::videoStreamCount = 0;

Player::Player() = default;

Player::~Player() {
    close();
}

bool Player::open(const Clip* clip, const Handlers& handlers, WindowToken host) {
    if (!clip)
        return false;
    m_state = 0;
    MediaPlatform& platform = *ql240::host().media;
    m_graph = newGraph(platform);
    if (!m_graph)
        return false;
    GraphRecipe recipe(platform);
    const bool opened = isMp4Name(clip->file().fileName()) ? openMp4(recipe, *clip, handlers)
                                                           : openAvi(recipe, *clip, handlers, host);
    if (opened)
        m_clip = clip;
    else
        close();
    qCDebug(lcMedia) << (opened ? "opened" : "failed to open") << clip->file().filePath();
    return opened;
}

bool Player::openMp4(GraphRecipe& recipe, const Clip& clip, const Handlers& handlers) {
    if (failed(recipe.buildMp4(*m_graph.get(), clip.file().absoluteFilePath().toStdU16String())))
        return false;
    videoStreamCount = std::min(recipe.videoStreamCount(), GraphRecipe::kMaxStreams);
    for (int i = 0; i < videoStreamCount; ++i)
        takeStream(recipe, i);
    updateVideoSizes();
    for (int i = 0; i < videoStreamCount; ++i)
        installHandler(i, handlers);
    for (int i = 0; i < kStreams; ++i) {
        if (!m_renderer[at(i)])
            continue;
        makeBlackFrame(i, of<IBasicVideo>(m_renderer[at(i)]).get());
        if (const auto shown = window(i))
            mayFail(shown->put_AutoShow(false));
    }
    return true;
}

bool Player::openAvi(GraphRecipe& recipe, const Clip& clip, const Handlers& handlers, WindowToken host) {
    // Ignores the status: a clip whose sound can't be rendered plays without sound, and any other failure
    // shows as a missing renderer.
    mayFail(recipe.buildAvi(*m_graph.get(), clip.file().absoluteFilePath().toStdU16String()));
    videoStreamCount = 1;
    takeStream(recipe, 0);
    updateVideoSizes();
    installHandler(0, handlers);
    makeBlackFrame(0, m_graph.as<IBasicVideo>().get());
    if (!m_renderer[0])
        return false;
    if (const auto shown = ownedWindow(host, false))
        mayFail(shown->put_AutoShow(false));
    return true;
}

void Player::takeStream(GraphRecipe& recipe, int index) {
    m_grabber[at(index)] = recipe.takeGrabber(index);
    m_renderer[at(index)] = recipe.takeRenderer(index);
}

void Player::installHandler(int index, const Handlers& handlers) {
    const auto grabber = of<ISampleGrabber>(m_grabber[at(index)]);
    if (grabber && handlers[at(index)])
        mayFail(grabber->SetCallback(handlers[at(index)], GrabberCallback::Buffer));
}

void Player::updateVideoSizes() {
    for (int i = 0; i < videoStreamCount; ++i) {
        if (const auto size = sizeOf(of<IBasicVideo>(m_renderer[at(i)]).get()))
            setVideoSize(i, *size);
    }
}

QSize Player::videoSize(int index) const {
    const std::uint64_t packed = m_videoSize[at(index)].load(std::memory_order_relaxed);
    return {static_cast<std::int32_t>(packed >> 32), static_cast<std::int32_t>(packed & 0xFFFFFFFF)};
}

void Player::setVideoSize(int index, const QSize& size) {
    const auto half = [](int value) { return static_cast<std::uint64_t>(static_cast<std::uint32_t>(value)); };
    m_videoSize[at(index)].store(half(size.width()) << 32 | half(size.height()), std::memory_order_relaxed);
}

void Player::makeBlackFrame(int index, IBasicVideo* video) {
    QImage& frame = m_frame[at(index)];
    frame = QImage();
    m_frameShape[at(index)] = QSize(0, 0);
    if (const auto size = sizeOf(video)) {
        frame = QImage(*size, QImage::Format_RGB888);
        frame.fill(Qt::black);
        m_frameShape[at(index)] = *size;
    }
}

void Player::close() {
    m_clip = nullptr;
    for (int i = 0; i < kStreams; ++i)
        setVideoSize(i, QSize(0, 0));
    for (const auto& filter : m_grabber) {
        if (const auto grabber = of<ISampleGrabber>(filter))
            mayFail(grabber->SetCallback(nullptr, GrabberCallback::Sample));
    }
    stop();
    for (int i = 0; i < kStreams; ++i) {
        m_grabber[at(i)].reset();
        m_renderer[at(i)].reset();
    }
    m_graph.reset();
}

bool Player::play() {
    if (!m_graph)
        return false;
    m_state = 0;
    return succeeded(m_graph.as<IMediaControl>()->Run());
}

bool Player::pause() {
    if (!m_graph)
        return false;
    m_state = 0;
    const bool accepted = succeeded(m_graph.as<IMediaControl>()->Pause());
    m_state |= kPaused;
    return accepted;
}

bool Player::stop() {
    if (!m_graph)
        return false;
    m_state = kStopping;
    const bool accepted = succeeded(m_graph.as<IMediaControl>()->Stop());
    m_state = (m_state & ~kStopping) | kStopped;
    return accepted;
}

bool Player::setPosition(std::int64_t units) {
    return succeeded(
        m_graph.as<IMediaSeeking>()->SetPositions(&units, Positioning::Absolute, nullptr, Positioning::None));
}

bool Player::rewind() {
    if (!m_graph)
        return false;
    m_state = 0;
    return setPosition(0);
}

bool Player::stepBy(std::int64_t units) {
    if (!m_graph)
        return false;
    std::int64_t position = 0;
    if (failed(m_graph.as<IMediaSeeking>()->GetCurrentPosition(&position)))
        return false;
    return setPosition(position + units);
}

bool Player::stepForward() {
    return stepBy(kStep);
}

bool Player::stepBack() {
    return stepBy(-kStep);
}

bool Player::seek(std::int32_t ms) {
    return m_graph && setPosition(ms * kUnitsPerMs);
}

Status Player::setRate(double rate) {
    return m_graph ? m_graph.as<IMediaSeeking>()->SetRate(rate) : Status{-1};
}

std::int64_t Player::positionMs() const {
    std::int64_t position = 0;
    std::int64_t end = 0;
    if (m_graph)
        mayFail(m_graph.as<IMediaSeeking>()->GetPositions(&position, &end));
    return toMs(position);
}

std::int64_t Player::durationMs() const {
    std::int64_t end = 0;
    if (m_graph)
        mayFail(m_graph.as<IMediaSeeking>()->GetStopPosition(&end));
    return toMs(end);
}

bool Player::isRunning() const {
    if (!m_graph)
        return false;
    GraphState state = GraphState::Stopped;
    return succeeded(m_graph.as<IMediaControl>()->GetState(0, &state)) && state == GraphState::Running;
}

bool Player::isSettled() const {
    GraphState state = GraphState::Stopped;
    return !m_graph || m_graph.as<IMediaControl>()->GetState(0, &state) != kStatusIntermediate;
}

const QImage& Player::frame(int index, bool grab) {
    QImage& frame = m_frame[at(index)];
    const auto grabber = of<ISampleGrabber>(m_grabber[at(index)]);
    if (grab && grabber)
        frame = grabbedFrame(*grabber.get(), m_frameShape[at(index)]);
    return frame;
}

// The sizes match only if the image's rows need no padding.
QImage Player::grabbedFrame(ISampleGrabber& grabber, const QSize& shape) {
    MediaType type;
    if (failed(grabber.GetConnectedMediaType(&type)) || type.major != kMediaTypeVideo ||
        type.subtype != kMediaSubtypeYuy2)
        return {};
    QImage image(shape, QImage::Format_RGB888);
    std::int32_t size = 0;
    if (failed(grabber.GetCurrentBuffer(&size, nullptr)) || size <= 0 || size / 2 * 3 != image.sizeInBytes())
        return {};
    std::vector<std::uint8_t> yuy2(at(size));
    if (failed(grabber.GetCurrentBuffer(&size, yuy2.data())))
        return {};
    yuy2ToRgb(yuy2.data(), yuy2.size() / 4, image.bits());
    return image;
}

ComPtr<IVideoWindow> Player::window(int index) const {
    return m_graph ? of<IVideoWindow>(m_renderer[at(index)]) : nullptr;
}

ComPtr<IVideoWindow> Player::ownedWindow(WindowToken host, bool second) const {
    const auto shown = window(second ? 1 : 0);
    if (shown) {
        mayFail(shown->put_Owner(host));
        mayFail(shown->put_WindowStyle(kWindowStyleChild));
    }
    return shown;
}

bool Player::attachWindow(WindowToken host, const QRect& rect, bool second) {
    const auto shown = ownedWindow(host, second);
    if (!shown)
        return false;
    mayFail(shown->SetWindowPosition(rect.left(), rect.top(), rect.width(), rect.height()));
    mayFail(shown->put_MessageDrain(host));
    return succeeded(shown->put_Visible(true));
}

void Player::moveWindow(WindowToken host, int x, int y, bool second) {
    if (const auto shown = ownedWindow(host, second)) {
        mayFail(shown->put_Left(x));
        mayFail(shown->put_Top(y));
        mayFail(shown->put_MessageDrain(host));
    }
}

void Player::resizeWindow(WindowToken host, int width, int height, bool second) {
    if (const auto shown = ownedWindow(host, second)) {
        mayFail(shown->put_Width(width));
        mayFail(shown->put_Height(height));
        mayFail(shown->put_MessageDrain(host));
    }
}

bool Player::hideWindow(int index) {
    const auto shown = window(index);
    return shown && succeeded(shown->put_Visible(false));
}

} // namespace ql240
