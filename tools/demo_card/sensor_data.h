// The drive as the camera's two kinds of clips record it: samples of a camera motion metadata (CAMM) track
// for MP4 files, and the text trailer of AVI files.
#pragma once

#include <QByteArray>
#include <QList>

#include "demo_card/drive.h"

namespace ql240::demo {

inline constexpr int kCammSampleMs = 50;

// One CAMM sample for each kCammSampleMs: the acceleration (type 3, m/s²: right, forward, up) and, in every
// second one, the GPS record (type 6); without satellites its fix is 0, its position and velocity are zero.
QList<QByteArray> cammSamples(const Drive& drive, TimeSpan span);

// The trailer of an event or motion clip, which holds the clip's last three quarters, ten lines a second.
// Accelerations in counts of 128 a g in the same axes; 0, 0 without satellites.
QByteArray sensorTrailer(const Drive& drive, TimeSpan span);

} // namespace ql240::demo
