// One recording of the camera: its file and its category. Never changes once made; belongs to the folder's
// collection that made it, everything else refers to it by pointer.
#pragma once

#include <QFileInfo>
#include <cstdint>

namespace ql240 {

enum ClipCategory : std::int32_t { kOtherClip = 0, kDrivingClip = 1, kEventClip = 2 };

// The category that a file name (without folder) stands for: "REC_…" driving, "EVS_…" event, case ignored.
std::int32_t clipCategory(const QString& fileName);

class Clip {
public:
    // Path, name and size stay what `file` has seen of them.
    explicit Clip(const QFileInfo& file) : m_file(file), m_category(clipCategory(file.fileName())) {}

    const QFileInfo& file() const { return m_file; }
    std::int32_t category() const { return m_category; }

private:
    const QFileInfo m_file;
    const std::int32_t m_category;
};

} // namespace ql240
