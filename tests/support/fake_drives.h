// Removable drives as a test wants them; `before` runs on the asking thread before each answer.
#pragma once

#include <functional>

#include "platform/drives.h"

namespace ql240 {

struct FakeDrives : Drives {
    QList<DriveInfo> drives;
    std::function<void()> before = [] {};

    QList<DriveInfo> removableDrives() override {
        before();
        return drives;
    }
};

} // namespace ql240
