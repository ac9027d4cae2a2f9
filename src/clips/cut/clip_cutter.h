// Copies a piece of a clip, with its sound and sensor data, to a new file. Samples aren't changed, and memory
// doesn't grow with the clip's media. Blocks while reading and writing. Any thread.
#pragma once

#include <QStringList>
#include <functional>

#include "clips/cut/cut_range.h"

namespace ql240 {

struct CutRequest {
    QString clip;
    CutRange range; // from the frame displayed at its start to the one displayed at its end
    bool keepsSound = true;
    QString output;          // empty: cutName() in the current folder
    bool overwrites = false; // an existing output
};

struct CutResult {
    enum class Status { Done, Cancelled, Failed };

    Status status = Status::Failed;
    QString reason;      // if it failed
    QString output;      // the piece's file, also if it couldn't be written
    CutRange range;      // the part of the clip that the piece shows
    QStringList remarks; // differences from the request
};

// Bytes written and their approximate total; returning false cancels.
using CutProgress = std::function<bool(std::int64_t bytes, std::int64_t of)>;

// The output appears only when complete. The clip is only read.
[[nodiscard]] CutResult cutClip(const CutRequest& request, const CutProgress& progress = {});

// The name of a piece, for example "REC_2013_04_05_12_30_12_cut.mp4"; both names are without a folder. "EVT_"
// and "MOT_", by which the viewer recognizes clips whose sensor data begin late, become "REC_".
QString cutName(const QString& fileName, std::int64_t fromUs);

} // namespace ql240
