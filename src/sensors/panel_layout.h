// The geometry of the dashboard panel and the arithmetic of its instruments, used by painting, the seek strip
// and the tests alike. Logical pixels in panel coordinates, times in ms.
#pragma once

#include <QColor>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

namespace ql240::panel {

inline constexpr QSize kSize(642, 250);
inline constexpr int kSegmentCount = 24;
inline constexpr int kDigitCount = 10;

inline constexpr QRect kSpeedDial(227, 72, 184, 184);
inline constexpr QRect kShockGauge(95, 98, 131, 131);
inline constexpr QRect kEarthGauge(413, 98, 131, 131);
inline constexpr QRect kGpsLamp(347, 191, 43, 43);
inline constexpr QRect kKmLabel(326, 179, 24, 13);
inline constexpr QRect kMphLabel(310, 179, 36, 13);
inline constexpr QRect kPlayTimeLabel(13, 86, 82, 16);
inline constexpr QRect kModelLabel(13, 113, 82, 29);
inline constexpr QRect kDateLabel(548, 86, 82, 30);

inline constexpr QRect kTimeText(20, 86, 82, 16);
inline constexpr QRect kModelText(21, 127, 82, 16);
inline constexpr QRect kDateText(556, 102, 82, 16);
inline constexpr QRect kAccXText(36, 174, 82, 16);
inline constexpr QRect kAccYText(36, 193, 82, 16);
inline constexpr QRect kAccZText(36, 212, 82, 16);
inline constexpr QRect kLatitudeText(560, 188, 82, 16);
inline constexpr QRect kLongitudeText(560, 216, 82, 16);
inline constexpr QColor kTextColour(96, 96, 96);
inline constexpr int kFontPoints = 8;

// Clockwise from the lower left of the dial over its top to the lower right, 10 units of speed each.
inline constexpr std::array<QPoint, kSegmentCount> kSegments{{
    {289, 199}, {277, 195}, {267, 189}, {259, 183}, {254, 176}, {250, 168}, {250, 158}, {250, 145},
    {252, 132}, {257, 120}, {264, 110}, {273, 102}, {284, 96},  {297, 93},  {311, 93},  {322, 93},
    {329, 95},  {337, 100}, {344, 107}, {350, 117}, {354, 128}, {358, 140}, {359, 154}, {358, 165},
}};
inline constexpr int kUnitsPerSegment = 10;

// Hundreds, tens and ones of the speed.
inline constexpr std::array<QPoint, 3> kDigits{{{286, 150}, {310, 150}, {334, 150}}};

inline constexpr int kStripBottom = 40; // the last row of the progress strip
inline constexpr QMargins kSeekMargins(2, 1, 12, 1);
inline constexpr int kTraceTop = 18;
inline constexpr int kTraceBottom = 38;
inline constexpr std::array<QColor, 3> kTraceColours{QColor(255, 0, 0), QColor(255, 255, 0),
                                                     QColor(0, 0, 255)};
inline constexpr int kThumbTop = 2;
inline constexpr int kThumbHeight = 33;
inline constexpr QColor kCursorColour(255, 255, 255);

// The speed on the dial: km/h, or miles per hour rounded down.
constexpr int shownSpeed(int speedKmh, bool kilometres) {
    return speedKmh >= 1 && !kilometres ? static_cast<int>(speedKmh / 1.609) : speedKmh;
}

constexpr int litSegments(int speed) {
    return std::clamp(speed / kUnitsPerSegment, 0, kSegmentCount);
}

// The trace's y for a raw acceleration; larger magnitudes of either sign are further down.
constexpr int traceY(int acceleration) {
    const double magnitude = acceleration < 0 ? -acceleration : acceleration;
    return std::min(static_cast<int>(kTraceTop + magnitude / 38 * 36 / 5 * 0.5), kTraceBottom);
}

// The left end of sample `index` of `count` in the trace of a panel of this width, rounded half up.
constexpr int traceX(std::int64_t index, std::int64_t count, int width) {
    return static_cast<int>((2 * index * (width - 2) + count) / (2 * count));
}

// The left edge of the progress cursor.
constexpr int cursorX(std::int64_t value, std::int64_t maximum, int width) {
    const int span = width - 2;
    if (maximum <= 0 || value <= 0)
        return 2;
    if (value == maximum)
        return span - 1;
    return static_cast<int>(std::min<std::int64_t>(value * span / maximum + 2, width));
}

// The part of the strip that takes clicks, and the time that a click seeks to. The cursor's range is 12
// pixels wider, so this is not the inverse of cursorX.
constexpr QRect seekArea(QRect panel) {
    return panel.marginsRemoved(kSeekMargins);
}
constexpr int seekTarget(int x, std::int64_t minimum, std::int64_t maximum, int width) {
    return static_cast<int>((x - 2) * (maximum - minimum) / (width - 14));
}

} // namespace ql240::panel
