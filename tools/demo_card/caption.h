// The camera's line of text: clock, speed, position and frame number, in its own dot-matrix characters.
#pragma once

#include <QImage>

#include "demo_card/drive.h"

namespace ql240::demo {

// camera: its name in capital letters.
void burnCaption(QImage& picture, const DrivePlan& plan, const DriveState& state, const QString& camera,
                 int frameNumber);

} // namespace ql240::demo
