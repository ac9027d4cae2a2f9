#include "playback/video_view.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

#include "playback/frame_adjuster.h"
#include "widgets/skin.h"

namespace ql240 {

namespace {

constexpr float kZoomStep = 0.3F;
constexpr float kMaxZoom = 4.0F;
constexpr int kDragThreshold = 3;
constexpr int kPanSlack = 50;

} // namespace

// The ratio is a float, rounded to hundredths in double and stored as a float again; exact results depend on
// this.
QRect fittedRect(const QSize& view, const QSize& frame) {
    const auto viewWidth = static_cast<float>(view.width());
    const auto frameWidth = static_cast<float>(frame.width());
    const float ratioX = frameWidth / viewWidth;
    const float ratioY = static_cast<float>(frame.height()) / static_cast<float>(view.height());
    if (frame.width() <= 0 || view.isEmpty())
        return {};
    const float ratio = std::max(ratioX, ratioY);
    const auto hundredths = static_cast<float>(std::trunc((ratio + 0.01) * 100) / 100);
    const double scaledWidth = std::trunc(static_cast<double>(frameWidth) / hundredths);
    const int margin = static_cast<int>((viewWidth - scaledWidth) * 0.5);
    if (margin == 0)
        return {1, 1, view.width() - 2, view.height() - 2};
    return {margin, 1, view.width() - 2 * margin, view.height() - 1};
}

VideoView::VideoView(QWidget* parent)
    : QLabel(parent),
      m_background(skinPixmap(":/gfx_r/2012/screen.png")),
      m_player(std::make_unique<Player>()) {
    for (int i = 0; i < Player::kStreams; ++i) {
        const auto at = static_cast<std::size_t>(i);
        m_handlers[at] = std::make_unique<SampleHandler>(this);
        m_handlers[at]->setIndex(i);
        m_adjusters[at] = std::make_unique<FrameAdjuster>();
    }
}

VideoView::~VideoView() {
    m_player->close();
    m_player.reset();
}

bool VideoView::openClip(const Clip* clip) {
    if (!clip)
        return false;
    m_player->close();
    m_zoom = 1.0F;
    if (!m_player->open(clip, {m_handlers[0].get(), m_handlers[1].get()}, token()))
        return false;
    layoutVideo();
    Q_EMIT fileOpened();
    return true;
}

void VideoView::closeClip() {
    m_player->close();
}

void VideoView::setSecondPlayer(Player* player) {
    m_secondPlayer = player;
    m_hasSecondPlayer = player != nullptr;
}

void VideoView::setImageAdjust(std::int32_t brightness, std::int32_t contrast) {
    for (const auto& adjuster : m_adjusters)
        adjuster->setAdjust({brightness, contrast});
}

void VideoView::layoutVideo() {
    const QRect rect = fittedRect(size(), m_frameSize);
    if (rect.isNull())
        return;
    if (m_showStream[0])
        m_player->attachWindow(token(), rect, false);
    if (m_secondPlayer && m_showStream[1])
        m_secondPlayer->attachWindow(token(), rect, true);
    m_zoom = 1.0F;
}

VideoView::Target VideoView::zoomTarget() const {
    if (m_secondPlayer && m_showStream[1])
        return {m_secondPlayer, true};
    return {m_player.get(), false};
}

void VideoView::zoomStep(int step) {
    // Every sum is rounded to float, so ten steps in and ten out don't end exactly at 1.0.
    m_zoom = step == 0 ? 1.0F : std::clamp(m_zoom + static_cast<float>(step) * kZoomStep, 1.0F, kMaxZoom);
    if (m_zoom <= 1.0F) {
        layoutVideo();
        m_zoom = 1.0F;
        return;
    }
    const float zoomedWidth = static_cast<float>(width()) * m_zoom;
    const float zoomedHeight = static_cast<float>(height()) * m_zoom;
    const auto centred = [](float zoomed, int nominal) {
        return static_cast<int>(-0.5 * (zoomed - static_cast<float>(nominal)));
    };
    const Target target = zoomTarget();
    target.player->resizeWindow(token(), static_cast<int>(zoomedWidth), static_cast<int>(zoomedHeight),
                                target.second);
    target.player->moveWindow(token(), centred(zoomedWidth, m_nominalSize.width()),
                              centred(zoomedHeight, m_nominalSize.height()), target.second);
    setFocus();
}

bool VideoView::panTo(const QPoint& position) {
    if (m_zoom <= 1.0F || position.x() > kPanSlack || position.y() > kPanSlack)
        return false;
    const auto pastEdge = [this](int extent, int offset, int nominal) {
        return static_cast<float>(extent) * m_zoom + static_cast<float>(offset + kPanSlack) <
               static_cast<float>(nominal);
    };
    if (pastEdge(width(), position.x(), m_nominalSize.width()) ||
        pastEdge(height(), position.y(), m_nominalSize.height()))
        return false;
    const Target target = zoomTarget();
    target.player->moveWindow(token(), position.x(), position.y(), target.second);
    return true;
}

// Outside zoom-window mode presses go to the window, for dragging it.
void VideoView::mousePressEvent(QMouseEvent* event) {
    event->setAccepted(m_zoomWinMode);
    if (!m_zoomWinMode)
        return;
    m_drag.begin(*event);
    m_pressPoint = m_lastPoint = event->position().toPoint();
}

// Accepts small moves too: the window would pass an ignored move back in its own coordinates.
void VideoView::mouseMoveEvent(QMouseEvent* event) {
    event->setAccepted(m_zoomWinMode);
    if (!m_zoomWinMode || !m_drag.goesOn(*event))
        return;
    const QPoint position = event->position().toPoint();
    const QPoint moved = position - m_lastPoint;
    if (std::abs(moved.x()) < kDragThreshold && std::abs(moved.y()) < kDragThreshold)
        return;
    if (panTo(position - m_pressPoint))
        m_lastPoint = position;
}

void VideoView::setVideoVisible(bool on) {
    showVideo(0, on);
    if (m_secondPlayer)
        showVideo(1, on);
}

void VideoView::showVideo(int index, bool on) {
    if (m_showStream[static_cast<std::size_t>(index)].exchange(on) == on)
        return;
    Player* player = index == 0 ? m_player.get() : m_secondPlayer;
    if (on)
        layoutVideo();
    else
        player->hideWindow(index);
}

void VideoView::filterSample(std::int32_t index, double, std::uint8_t* buffer, std::int32_t length) {
    if (!buffer || length <= 0 || index < 0 || index >= Player::kStreams)
        return;
    m_adjusters[static_cast<std::size_t>(index)]->filter(buffer, static_cast<std::size_t>(length),
                                                         m_player->videoSize(index));
    bringBackHidden();
}

// A hidden picture reappears with the next decoded frame. Streaming thread, so the layout is queued to the
// interface thread.
void VideoView::bringBackHidden() {
    const bool first = !m_showStream[0].exchange(true);
    const bool second = m_hasSecondPlayer && !m_showStream[1].exchange(true);
    if (first || second)
        QMetaObject::invokeMethod(this, &VideoView::layoutVideo, Qt::QueuedConnection);
}

void VideoView::setSelected(bool on) {
    if (m_selected == on)
        return;
    m_selected = on;
    update();
}

void VideoView::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRect(1, 1, width() - 2, height() - 2), m_background);
}

void VideoView::resizeEvent(QResizeEvent*) {
    layoutVideo();
}

void VideoView::showEvent(QShowEvent* event) {
    QLabel::showEvent(event);
    layoutVideo();
}

void VideoView::hideEvent(QHideEvent* event) {
    QLabel::hideEvent(event);
    m_player->hideWindow(0);
    if (m_secondPlayer)
        m_secondPlayer->hideWindow(1);
}

} // namespace ql240
