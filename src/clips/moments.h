// The moments of a clip that matter: shocks in its accelerations, and the camera's own classification.
// Subtracts the clip's median from each axis, which removes gravity. Accelerations in g, times in
// microseconds from the clip's start. Any thread.
#pragma once

#include "clips/clip_record.h"

namespace ql240 {

struct ShockOptions {
    double thresholdG = 0.5;
    std::int64_t mergedUs = 3'000'000; // closer shocks count as one
};

struct Shock {
    enum class Axis { X, Y, Z };

    std::int64_t timeUs = 0; // of the peak
    double sizeG = 0;        // magnitude over all axes
    Axis axis = Axis::X;     // the strongest
};

// Sorted by time. Potholes are too short for an impact and hard braking is too long, so neither counts; if
// samples are too far apart to distinguish a pothole, everything short above the threshold counts.
std::vector<Shock> findShocks(const std::deque<RecordedAcceleration>& accelerations,
                              const ShockOptions& options = {});

// The camera's classification by the file name that it chose (without folder, case-insensitive).
enum class CameraDecision { None, Event, Motion };
CameraDecision cameraDecision(const QString& fileName);

// The latest fix at or before the time, if it is at most two seconds old; otherwise null.
const RecordedFix* fixAt(const ClipRecord& record, std::int64_t timeUs);

} // namespace ql240
