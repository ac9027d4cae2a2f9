#include "playback/widget_volume.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cstdint>

#include "platform/host.h"
#include "platform/wave_out.h"
#include "widgets/skin.h"

namespace ql240 {

namespace {

constexpr std::uint32_t kDevice = 0;
constexpr std::uint32_t kLevelStep = 6553;
constexpr int kSegmentWidth = 5;
constexpr int kSegmentHeight = 7;

// 16 bits for each channel, both the same.
std::uint32_t encodedVolume(int level) {
    const std::uint32_t channel = (static_cast<std::uint32_t>(level) * kLevelStep) & 0xFFFF;
    return channel | channel << 16;
}

} // namespace

WidgetVolume::WidgetVolume(QWidget* parent)
    : QWidget(parent),
      m_bar(skinPixmap(":/gfx_r/2012/volume_bar.png")),
      m_segment(skinPixmap(":/gfx_r/2012/volume_level.png")) {
    describeGauge(this, this);
    setAccessibleName(tr("Volume"));
    std::uint32_t volume = 0;
    if (WaveOut* output = host().waveOut; output && output->waveOutGetVolume(kDevice, &volume) == 0)
        m_level = static_cast<int>((volume & 0xFFFF) / kLevelStep);
}

void WidgetVolume::setSoundOn(bool on) {
    if (!on) {
        send(0);
        return;
    }
    m_level = std::clamp(m_level, 1, kMaxLevel);
    send(m_level);
    update();
}

void WidgetVolume::send(int level) {
    if (WaveOut* output = host().waveOut)
        output->waveOutSetVolume(kDevice, encodedVolume(level));
}

void WidgetVolume::mouseMoveEvent(QMouseEvent* event) {
    setLevel((event->position().toPoint().x() + 1) / kSegmentWidth);
}

void WidgetVolume::setLevel(int level) {
    m_level = std::clamp(level, 1, kMaxLevel);
    send(m_level);
    update();
    tellGaugeChanged(this, *this);
}

QString WidgetVolume::gaugeText() const {
    return tr("%1 %").arg(m_level * 100 / kMaxLevel);
}

void WidgetVolume::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(rect(), m_bar);
    if (!isEnabled())
        return;
    for (int i = 0; i < m_level; ++i)
        painter.drawPixmap(QRect(1 + kSegmentWidth * i, 1, kSegmentWidth, kSegmentHeight), m_segment);
}

} // namespace ql240
