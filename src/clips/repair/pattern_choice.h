// Chooses the healthy clip to repair a damaged one with. Blocks while reading; any thread.
#pragma once

#include <QStringList>
#include <memory>

#include "clips/repair/mp4_pattern.h"

namespace ql240::repair {

// The pattern from a healthy clip; nothing, with the reason in `problem`, if it doesn't fit `damaged`, which
// is open, or has more samples than `samplesLeft`, from which they are subtracted.
std::unique_ptr<Mp4Pattern> fittingPattern(const QString& healthy, QFileDevice& damaged,
                                           std::uint64_t& samplesLeft, QString& problem);

// The other MP4 clips with an index in a clip's folder: those with similar names first, then by distance in
// recording time. At most 32.
QStringList patternsFor(const QString& clip);

// Describes, in English, the clip needed as a pattern, as far as that can be seen from the damaged one.
QString wantedKind(QFileDevice& damaged);

} // namespace ql240::repair
