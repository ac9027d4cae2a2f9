// Repairs a clip whose recording was interrupted: copies its samples, unchanged, to a new file with an index.
// The original is only read. Blocks while reading and writing; any thread.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>

namespace ql240 {

enum class RepairStatus {
    Repaired,
    NotNeeded, // the clip has its index, or isn't a clip
    NoPattern, // there is no healthy clip of the same kind
    NothingFound,
    ReadFailed,
    WriteFailed,
    Cancelled,
};

struct RepairOrder {
    QString clip;
    QString pattern; // a healthy clip of the same kind; empty: search the clip's folder
    QString output;
    bool replaces = false; // an existing output
    // Bytes done and their total; returning false cancels the repair, which leaves no file.
    std::function<bool(std::int64_t done, std::int64_t all)> progress{};
};

struct RepairResult {
    RepairStatus status = RepairStatus::NotNeeded;
    QString problem; // the reason if it isn't repaired
    QString pattern; // the one used; MP4 only
    std::int64_t pictures = 0;
    std::int64_t sounds = 0;
    std::int64_t sensors = 0;
    std::int64_t lostBytes = 0; // recorded, but incomplete or unrecognized
};

// The output exists only, and complete, with the status Repaired.
[[nodiscard]] RepairResult repairClip(const RepairOrder& order);

// Whether the file is a clip without a complete index; false if it can't be read.
bool needsRepair(const QString& clip);

// The name for a clip's repaired copy; both are without a folder.
QString repairedName(const QString& fileName);

} // namespace ql240
