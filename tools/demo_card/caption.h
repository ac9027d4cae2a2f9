// The camera's line of text: clock, speed and position, frame number; in dots of its own, without a font.
#pragma once

#include <QImage>

#include "demo_card/drive.h"

namespace ql240::demo {

// camera: its name in capital letters.
void burnCaption(QImage& picture, const DrivePlan& plan, const DriveState& state, const QString& camera,
                 int frameNumber);

} // namespace ql240::demo
