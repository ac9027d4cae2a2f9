// The drive as the camera's two kinds of clips record it: samples of a camera motion metadata (CAMM) track
// for MP4 files, and the text trailer of AVI files.
#pragma once

#include <QByteArray>
#include <QList>

#include "demo_card/drive.h"

namespace ql240::demo {

inline constexpr int kCammSampleMs = 50;

// One CAMM sample every kCammSampleMs: the acceleration (type 3, m/s²: right, forward, up) and, in every
// second sample, the GPS record (type 6). Without satellites the record's fix, position and velocity are
// zero.
QList<QByteArray> cammSamples(const Drive& drive, TimeSpan span);

// The trailer of an event or motion clip, which covers the clip's last three quarters at ten lines per
// second. Accelerations in counts of 128 per g on the same axes; position 0, 0 without satellites.
QByteArray sensorTrailer(const Drive& drive, TimeSpan span);

} // namespace ql240::demo
