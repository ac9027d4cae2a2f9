// The moments of a clip that matter: shocks that the accelerations show, and what the camera itself decided.
// Accelerations in g less their median over the clip on each axis, which takes gravity away; times in
// microseconds from the clip's start. Any thread.
#pragma once

#include "clips/clip_record.h"

namespace ql240 {

struct ShockOptions {
    double thresholdG = 0.5;
    std::int64_t mergedUs = 3'000'000; // shocks closer than that are one
};

struct Shock {
    enum class Axis { X, Y, Z };

    std::int64_t timeUs = 0; // of the peak
    double sizeG = 0;        // of all axes together
    Axis axis = Axis::X;     // the strongest
};

// In order of time. A pothole, shorter than an impact can be, is none, nor is hard braking, longer than one
// can be; where samples are too far apart to tell, whatever exceeds the threshold is one.
std::vector<Shock> findShocks(const std::deque<RecordedAcceleration>& accelerations,
                              const ShockOptions& options = {});

// What the camera says by the name that it gives a clip (without folder, case ignored).
enum class CameraDecision { None, Event, Motion };
CameraDecision cameraDecision(const QString& fileName);

// The receiver's last fix up to that time, if it isn't older than two seconds; null otherwise.
const RecordedFix* fixAt(const ClipRecord& record, std::int64_t timeUs);

} // namespace ql240
