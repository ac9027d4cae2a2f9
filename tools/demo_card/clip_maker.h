// Makes one clip file: paints its pictures, synthesises its sound, encodes both and adds the sensor data.
#pragma once

#include <QString>
#include <atomic>

#include "demo_card/clips.h"

namespace ql240::demo {

// Shared by the threads that make clips and the one that shows the progress.
struct Progress {
    std::atomic<int> framesDone = 0;
    std::atomic<bool> cancelled = false;
};

// Returns an error text, empty on success.
[[nodiscard]] QString makeClip(const ClipPlan& plan, const QString& path, Progress& progress);

} // namespace ql240::demo
