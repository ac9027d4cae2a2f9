// Reads what a clip's file holds beside its pictures and sound: its streams, its record and what is wrong
// with it. In one pass, with memory for the record alone; may take as long as the file system does. Any
// thread.
#pragma once

#include <QIODevice>

#include "clips/clip_record.h"
#include "clips/formats/streams.h"

namespace ql240 {

struct ClipContents {
    const char* container = ""; // "MP4", "AVI", empty for neither
    std::vector<ClipStream> streams;
    std::int64_t lengthMs = 0; // the longest stream's, or the container's own word
    ClipRecord record;
    // What is wrong with the container, and where.
    QStringList faults;
    QString readError; // where and why the device stopped to give bytes
};

enum class RecordPart { Fixes, FixesAndAccelerations };

// `device` is open and seekable. `fileName` (without folder) says when the clip began and what kind it is.
ClipContents readClipContents(QIODevice& device, const QString& fileName,
                              RecordPart part = RecordPart::FixesAndAccelerations);

} // namespace ql240
