// Removable drives as a test wants them.
#pragma once

#include "platform/drives.h"

namespace ql240 {

struct FakeDrives : Drives {
    QList<DriveInfo> drives;

    QList<DriveInfo> removableDrives() override { return drives; }
};

} // namespace ql240
