// The sound of a drive: engine, tyres and wind by speed, the indicator's clicks, a thud at the impact.
#pragma once

#include <QByteArray>

#include "demo_card/drive.h"

namespace ql240::demo {

// 16-bit mono samples in native byte order for a part of the drive.
QByteArray driveSound(const Drive& drive, TimeSpan span, int rate, const QList<TimeSpan>& indicator);

} // namespace ql240::demo
