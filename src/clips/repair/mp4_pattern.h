// What a healthy MP4 clip reveals about others of the same camera: their tracks, the order of samples and
// their durations. One thread at a time; offsets and sizes in bytes, durations in ticks of the track.
#pragma once

#include <map>

#include "clips/containers/mp4_movie.h"
#include "clips/repair/aac_frames.h"
#include "clips/repair/media_finders.h"

namespace ql240::repair {

using sensorfiles::ByteRange;
using sensorfiles::ByteSource;
using sensorfiles::fourCc;

struct TrackPattern {
    enum class Kind : std::uint8_t { Units, Jpeg, Pcm, Aac, Motion, Text };

    Kind kind = Kind::Units;
    containers::Mp4Track track;
    std::vector<Durations> durations{1}; // for motion samples, one per shape
    std::uint32_t largest = 0;           // size of a sample
    // In samples, of adjacent samples of the track.
    std::uint32_t shortestRun = 0;
    std::uint32_t longestRun = 0;

    std::optional<UnitSyntax> units;
    std::uint32_t keyInterval = 0;
    bool hasReordering = false;
    std::int32_t shift = 0;     // composition offset of a picture that isn't reordered
    std::int64_t placeStep = 1; // difference of the order counts of successive pictures on display

    AacFormat aac;
    std::uint32_t unitBytes = 0;        // of a sample of uncompressed sound
    std::vector<std::int64_t> runBytes; // the lengths of its runs, the most frequent first
    MotionShapes shapes;

    bool isPicture() const { return kind == Kind::Units || kind == Kind::Jpeg; }
    bool isSound() const { return kind == Kind::Pcm || kind == Kind::Aac; }
    // The maximum size of a sample.
    std::int64_t mostBytes() const;
};

// By how much one track is ahead of another at most, in the file's order.
struct SecondsApart {
    double ofPictures = 0; // among the video tracks
    double ofAll = 0;      // with sound
};

struct Mp4Pattern {
    containers::Mp4Movie movie;
    std::vector<TrackPattern> tracks;
    ByteRange media;         // from the first sample's start to the last one's end
    bool hasPadding = false; // between samples
    SecondsApart apart;
    std::optional<std::int64_t> laterS; // how much later the damaged clip began, by their names
};

// Nothing, with the reason in `problem`, if the clip is damaged or contains samples that can't be found
// without an index, or more samples than `samplesLeft`, from which they are subtracted. The file is open.
std::optional<Mp4Pattern> readMp4Pattern(QFileDevice& file, std::uint64_t& samplesLeft, QString& problem);

} // namespace ql240::repair
