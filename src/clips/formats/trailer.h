// The text behind an AVI clip's pictures: the marker "ETKLP1" and a line for each sample. The lines say no
// times within the clip; they are spread over it evenly.
#pragma once

#include <QByteArrayView>
#include <functional>

namespace ql240::sensorfiles {

// So many bytes at the end of the file may hold the marker.
inline constexpr std::int64_t kTrailerBytes = 33006;

struct TrailerLine {
    QByteArrayView clock; // ends in "$hhmmss", the camera's time
    double latitude = 0;  // 0 is no position, also where the line has no number
    double longitude = 0;
    std::int32_t speedKmh = 0;
    std::int16_t x = 0; // counts of 128 a g
    std::int16_t y = 0;
    std::int16_t z = 0;
};

// False where there is no marker. Lines with fewer fields than they need are skipped.
bool forEachTrailerLine(QByteArrayView tail, const std::function<void(const TrailerLine&)>& visit);

// The camera starts to write samples late in clips of events and motion: a third more of the first one goes
// in front of so many lines.
std::size_t trailerPadding(std::size_t lines);

// The distance of two samples in a clip of that length; the padding counts as samples.
std::uint64_t trailerStepMs(std::int64_t durationMs, std::size_t samples);

} // namespace ql240::sensorfiles
