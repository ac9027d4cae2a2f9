// One recording of the camera: its file and its category. Immutable. Owned by the ClipFolder that created it;
// everything else holds a pointer to it.
#pragma once

#include <QFileInfo>
#include <cstdint>

namespace ql240 {

enum ClipCategory : std::int32_t { kOtherClip = 0, kDrivingClip = 1, kEventClip = 2 };

// The category of a file name (without folder): "REC_…" driving, "EVS_…" event, case-insensitive.
std::int32_t clipCategory(const QString& fileName);

class Clip {
public:
    // Keeps the path, name and size that `file` has cached.
    explicit Clip(const QFileInfo& file) : m_file(file), m_category(clipCategory(file.fileName())) {}

    const QFileInfo& file() const { return m_file; }
    std::int32_t category() const { return m_category; }

private:
    const QFileInfo m_file;
    const std::int32_t m_category;
};

} // namespace ql240
