// The text at the end of an AVI clip: the marker "ETKLP1" and one line per sample. The lines have no times
// within the clip; they are spread evenly over it.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <array>
#include <functional>
#include <optional>

namespace ql240::sensorfiles {

// The marker is within this many bytes of the end of the file.
inline constexpr std::int64_t kTrailerBytes = 33006;

struct TrailerLine {
    QByteArrayView text;  // the whole line, with its line break
    QByteArrayView clock; // ends in "$hhmmss", the camera's time
    double latitude = 0;  // 0: no position, or not a number in the line
    double longitude = 0;
    std::int32_t speedKmh = 0;
    std::int16_t x = 0; // in 1/128 g
    std::int16_t y = 0;
    std::int16_t z = 0;
    bool isWhole = false; // false: it ends without a line break, so its last number may be cut
    // Whether they are in the line, not 0 in place of something else.
    bool hasSpeed = false;
    bool hasAcceleration = false;
    bool isNumeric = false; // no field but the clock is anything else than a number or empty
};

// The offset of the first line, after the marker; nothing without a marker.
std::optional<qsizetype> findTrailer(QByteArrayView tail);

// False without a marker. Lines with too few fields go to `skip`, if given.
bool forEachTrailerLine(QByteArrayView tail, const std::function<void(const TrailerLine&)>& visit,
                        const std::function<void(QByteArrayView line)>& skip = {});

// The marks of event and motion clips.
inline constexpr std::array kLateMarks{QLatin1StringView("EVT_"), QLatin1StringView("MOT_")};

// Whether the camera started writing samples late, by the clip's path: a mark, case-sensitive, anywhere after
// the first character.
bool trailerStartsLate(const QString& path);

// In clips that start late: the number of copies of the first sample,
// about a third of the lines, to insert before them.
std::size_t trailerPadding(std::size_t lines);

// The interval between two samples, padding included, in a clip of that duration.
std::uint64_t trailerStepMs(std::int64_t durationMs, std::size_t samples);

} // namespace ql240::sensorfiles
