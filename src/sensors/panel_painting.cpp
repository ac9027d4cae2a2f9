#include "sensors/panel_painting.h"

#include <QPainter>
#include <algorithm>

#include "platform/sensor_library.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

void paintGauges(QPainter& painter, const PanelImages& images) {
    painter.drawPixmap(panel::kSpeedDial, images.speedDial);
    painter.drawPixmap(panel::kShockGauge, images.shockGauge);
    painter.drawPixmap(panel::kEarthGauge, images.earthGauge);
}

void paintSpeed(QPainter& painter, const PanelImages& images, int speed) {
    for (int i = 0; i < panel::litSegments(speed); ++i)
        painter.drawPixmap(panel::kSegments[i], images.segments[i]);
    const int hundreds = speed / 100 % 10;
    const int tens = speed / 10 % 10;
    if (hundreds > 0)
        painter.drawPixmap(panel::kDigits[0], images.digits[hundreds]);
    if (hundreds > 0 || tens > 0)
        painter.drawPixmap(panel::kDigits[1], images.digits[tens]);
    painter.drawPixmap(panel::kDigits[2], images.digits[std::max(speed % 10, 0)]);
}

void paintCursor(QPainter& painter, const PanelImages& images, const PanelState& state) {
    const int x = panel::cursorX(state.progressValue, state.progressMaximum, state.size.width());
    painter.drawPixmap(QPoint(x, panel::kThumbTop), images.thumb);
    painter.fillRect(x, panel::kThumbTop, 1, panel::kThumbHeight, panel::kCursorColour);
}

} // namespace

PanelImages loadPanelImages() {
    const auto load = [](const QString& name) { return skinPixmap(skinPath(name)); };
    PanelImages images{
        .speedDial = load(QStringLiteral("speed_meter1")),
        .gpsLamp = load(QStringLiteral("gps_on")),
        .kmLabel = load(QStringLiteral("km")),
        .mphLabel = load(QStringLiteral("mph")),
        .shockGauge = load(QStringLiteral("shock_gage2")),
        .earthGauge = load(QStringLiteral("earth2")),
        .playTimeLabel = load(QStringLiteral("playtime")),
        .modelLabel = load(QStringLiteral("model")),
        .dateLabel = load(QStringLiteral("date")),
        .thumb = load(QStringLiteral("progress_bar")),
        .segments = {},
        .digits = {},
    };
    for (int i = 0; i < panel::kSegmentCount; ++i)
        images.segments[i] = load(QStringLiteral("s%1").arg(i + 1));
    for (int i = 0; i < panel::kDigitCount; ++i)
        images.digits[i] = load(QStringLiteral("%1").arg(i));
    return images;
}

QString progressText(std::int32_t valueMs, std::int32_t maximumMs) {
    const auto two = [](int number) { return QString::number(number).rightJustified(2, QLatin1Char('0')); };
    return QStringLiteral("%1:%2/%3:%4")
        .arg(two(valueMs / 60000), two(valueMs % 60000 / 1000), two(maximumMs / 60000),
             two(maximumMs % 60000 / 1000));
}

QString accelerationText(std::int16_t raw) {
    return QString::number(raw / SensorLibrary::kCountsPerG, 'g', 3);
}

QString degreeText(double degrees) {
    return degrees != 0.0 ? QString::number(degrees, 'g', 6) : QString();
}

void paintTrace(QPainter& painter, const SensorTrack& track, int width) {
    const auto count = static_cast<std::int64_t>(track.size());
    SensorSample previous;
    for (std::int64_t i = 0; i < count; ++i) {
        const SensorSample& current = track[i];
        const int x1 = panel::traceX(i, count, width);
        const int x2 = panel::traceX(i + 1, count, width);
        const std::array axes{std::pair(previous.accX, current.accX), std::pair(previous.accY, current.accY),
                              std::pair(previous.accZ, current.accZ)};
        for (std::size_t axis = 0; axis < axes.size(); ++axis) {
            painter.setPen(panel::kTraceColours[axis]);
            painter.drawLine(x1, panel::traceY(axes[axis].first), x2, panel::traceY(axes[axis].second));
        }
        previous = current;
    }
}

void paintInstruments(QPainter& painter, const PanelImages& images, const PanelState& state) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (state.enabled)
        paintGauges(painter, images);
    if (state.hasFix)
        painter.drawPixmap(panel::kGpsLamp, images.gpsLamp);
    if (state.kilometres)
        painter.drawPixmap(panel::kKmLabel, images.kmLabel);
    else
        painter.drawPixmap(panel::kMphLabel, images.mphLabel);
    paintSpeed(painter, images, panel::shownSpeed(state.speedKmh, state.kilometres));
    painter.drawPixmap(panel::kPlayTimeLabel, images.playTimeLabel);
    painter.drawPixmap(panel::kModelLabel, images.modelLabel);
    painter.drawPixmap(panel::kDateLabel, images.dateLabel);
}

void paintReadings(QPainter& painter, const PanelImages& images, const PanelState& state) {
    paintCursor(painter, images, state);
    painter.setPen(panel::kTextColour);
    const auto text = [&painter](const QRect& place, const QString& words) {
        painter.drawText(place, Qt::AlignLeft, words);
    };
    text(panel::kTimeText, state.timeText);
    text(panel::kModelText, state.modelText);
    text(panel::kDateText, state.dateText);
    text(panel::kAccXText, accelerationText(state.accX));
    text(panel::kAccYText, accelerationText(state.accY));
    text(panel::kAccZText, accelerationText(state.accZ));
    text(panel::kLatitudeText, degreeText(state.latitude));
    text(panel::kLongitudeText, degreeText(state.longitude));
}

} // namespace ql240
