// Paints the dashboard panel from plain values. Interface thread only; coordinates as in panel_layout.h.
#pragma once

#include <QFont>
#include <QPixmap>
#include <QString>
#include <array>
#include <cstdint>

#include "sensors/panel_layout.h"
#include "sensors/sensor_track.h"

class QPainter;

namespace ql240 {

struct PanelImages {
    QPixmap speedDial;
    QPixmap gpsLamp;
    QPixmap kmLabel;
    QPixmap mphLabel;
    QPixmap shockGauge;
    QPixmap earthGauge;
    QPixmap playTimeLabel;
    QPixmap modelLabel;
    QPixmap dateLabel;
    QPixmap thumb;
    std::array<QPixmap, panel::kSegmentCount> segments;
    std::array<QPixmap, panel::kDigitCount> digits;
};

PanelImages loadPanelImages();

struct PanelState {
    QSize size = panel::kSize;
    bool enabled = true; // the gauges are shown
    bool hasFix = false;
    bool kilometres = true;
    std::int32_t speedKmh = 0;
    std::int32_t progressMaximum = 0;
    std::int32_t progressValue = 0;
    std::int16_t accX = 0;
    std::int16_t accY = 0;
    std::int16_t accZ = 0;
    double latitude = 0.0;
    double longitude = 0.0;
    QString timeText;
    QString modelText;
    QString dateText;
};

// "mm:ss/mm:ss" of two times in ms; minutes are not limited to 59.
QString progressText(std::int32_t valueMs, std::int32_t maximumMs);

// A raw acceleration converted to g for display, three significant digits.
QString accelerationText(std::int16_t raw);

// Degrees for display, six significant digits; empty for 0.
QString degreeText(double degrees);

// The accelerations of the whole track on the strip, one line per sample and axis.
void paintTrace(QPainter& painter, const SensorTrack& track, int width);

// Everything else, in two steps because the trace is painted between them: the instruments below it, then the
// cursor and texts.
void paintInstruments(QPainter& painter, const PanelImages& images, const PanelState& state);
void paintReadings(QPainter& painter, const PanelImages& images, const PanelState& state);

} // namespace ql240
