// Repairs MP4 clips, from open file to open file. Blocks while reading and writing; one thread at a time.
#pragma once

#include "clips/repair/media_walk.h"

namespace ql240::repair {

// What could be saved of a clip, in samples.
struct Saved {
    std::int64_t pictures = 0;
    std::int64_t sounds = 0;
    std::int64_t sensors = 0;
    std::int64_t lostBytes = 0; // incomplete or unrecognized
    bool isCancelled = false;
    QString failure; // of reading or writing
};

// Iterates over the top-level boxes. An invalid size of "mdat" extends it to the end of the file.
class OuterBoxes {
public:
    struct Part {
        std::uint32_t type = 0;
        ByteRange body;
        bool isWhole = true;
    };

    explicit OuterBoxes(FileWindow& window) : m_window(window) {}
    // Nothing at the end, if no box begins, or after as many as a clip can have.
    std::optional<Part> next();
    // Continues at the actual end of the media.
    void moveTo(std::int64_t offset) { m_at = offset; }

private:
    FileWindow& m_window;
    std::int64_t m_at = 0;
    std::size_t m_count = 0;
};

// Whether it has the boxes of an MP4 clip, and no complete index among them, or one.
bool lacksMp4Index(FileWindow& window);
bool hasMp4Index(FileWindow& window);

// The body of the first "mdat" box that isn't empty: some recorders write an empty one before it.
std::optional<ByteRange> mp4Media(FileWindow& window);

// `to` is empty. The caller discards it if there is a failure or no picture.
Saved saveMp4(QFileDevice& from, const Mp4Pattern& pattern, QFileDevice& to,
              const containers::CopyProgress& progress);

} // namespace ql240::repair
