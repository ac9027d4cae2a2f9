// Finds samples whose size follows from their content: sensor records, lines of text, Motion-JPEG pictures.
// And durations, learned from a healthy clip. Offsets and sizes in bytes; `end` limits what is read. One
// thread at a time.
#pragma once

#include <QByteArray>

#include "clips/repair/picture_finder.h"

namespace ql240::repair {

struct FoundSample {
    Ending ending = Ending::Whole;
    std::int64_t size = 0;
    std::size_t shape = 0; // the number of a motion sample's shape
};

// A motion sample is one or more records; its shape is their types.
using MotionShapes = std::vector<QByteArray>;
// Nothing if the sample doesn't consist of complete records.
std::optional<QByteArray> motionShape(Bytes sample);
// `shapes`: the longest first. Nothing if no sample begins there; so for the next two.
std::optional<FoundSample> motionSampleAt(FileWindow& window, std::int64_t offset, std::int64_t end,
                                          const MotionShapes& shapes);

// A length of two bytes and printable text that contains a sentence or "gsensor".
std::optional<FoundSample> textSampleAt(FileWindow& window, std::int64_t offset, std::int64_t end);

// From the start-of-image marker to the first end-of-image marker. Takes what it scans off `bytesLeft`, which
// bounds it: pictures that seem to begin at many places may all have to be scanned to the same end.
std::optional<FoundSample> jpegAt(FileWindow& window, std::int64_t offset, std::int64_t areaEnd,
                                  std::int64_t mostBytes, std::int64_t& bytesLeft);

// The durations of a healthy clip's samples: the most frequent one if the others hardly add up, otherwise
// their mean without drift. In ticks of the track.
class Durations {
public:
    void learn(std::uint32_t ticks);
    bool isEmpty() const { return m_count == 0; }
    std::uint32_t next();
    // The total duration of `samples` samples.
    std::int64_t ticksOf(std::int64_t samples) const;

private:
    bool isSteady() const;

    std::int64_t m_count = 0;
    std::int64_t m_ticks = 0;
    std::uint32_t m_usual = 0;
    std::int64_t m_usualCount = 0;
    std::int64_t m_balance = 0; // of the usual one against others, as in a majority vote
    std::int64_t m_given = 0;
};

} // namespace ql240::repair
