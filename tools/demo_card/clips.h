// The clips of the demo card: drives through Seoul on an April day, with their traffic and scenery.
#pragma once

#include <QList>
#include <QString>
#include <cstdint>

#include "demo_card/clip_encoder.h"
#include "demo_card/drive.h"
#include "demo_card/scene/world.h"
#include "demo_card/sound.h"

namespace ql240::demo {

struct ClipPlan {
    QString name; // by the camera's naming rules
    DrivePlan drive;
    TimeSpan span{0, 20}; // part of the drive
    World world;
    ClipFormat format; // with one video, or two: front and rear
    QList<TimeSpan> indicator;

    QDateTime start() const { return drive.start.addMSecs(static_cast<std::int64_t>(span.from * 1000)); }
    int frames() const { return static_cast<int>((span.to - span.from) * format.frameRate); }
};

QList<ClipPlan> demoClips();

} // namespace ql240::demo
