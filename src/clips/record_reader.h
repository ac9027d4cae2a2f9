// Reads a clip's file except its video and audio data: the streams, the record and any faults. In one pass,
// with memory for the record only; blocks as long as the file system does. Any thread.
#pragma once

#include <QIODevice>

#include "clips/clip_record.h"
#include "clips/formats/streams.h"

namespace ql240 {

struct ClipContents {
    const char* container = ""; // "MP4", "AVI", empty for neither
    std::vector<ClipStream> streams;
    std::int64_t lengthMs = 0; // the longest stream's, or the container's own value
    ClipRecord record;
    // Faults of the container, with offsets.
    QStringList faults;
    QString readError; // where and why reading from the device failed
};

enum class RecordPart { Fixes, FixesAndAccelerations };

// `device` is open and seekable. `path` is absolute or the name alone; it says when the clip starts and
// whether its trailer starts late.
ClipContents readClipContents(QIODevice& device, const QString& path,
                              RecordPart part = RecordPart::FixesAndAccelerations);

} // namespace ql240
