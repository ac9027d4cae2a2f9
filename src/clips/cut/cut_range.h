// A part of a clip, and the piece made from it. Times in microseconds from the clip's start. One thread at a
// time.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

#include "clips/containers/copier.h"

namespace ql240 {

struct CutRange {
    std::int64_t fromUs = 0;
    std::int64_t toUs = 0;
};

// A piece that is planned but not written.
class ClipPiece {
public:
    virtual ~ClipPiece() = default;

    // What the piece shows, from the start of its first frame to the end of its last one.
    CutRange range() const { return m_range; }
    // The approximate size of the output.
    std::int64_t bytes() const { return m_bytes; }
    // Differences from the request.
    const QStringList& remarks() const { return m_remarks; }

    // Writes the piece; call it once. The copier reports failures.
    virtual void write(containers::Copier& to) = 0;

protected:
    // Pieces end with the first video; a camera may fail before the others. `clipUs`: the end of the longest
    // track.
    void remarkEnd(std::int64_t clipUs) {
        constexpr double kUsPerSecond = 1e6;
        const double seconds = static_cast<double>(clipUs - m_range.toUs) / kUsPerSecond;
        if (seconds > 0.5)
            m_remarks
                << QStringLiteral("ends with the picture, %1 s before the clip").arg(seconds, 0, 'f', 3);
    }

    CutRange m_range;
    std::int64_t m_bytes = 0;
    QStringList m_remarks;
};

} // namespace ql240
