// Removable drives set by the test; `before` runs on the calling thread before each answer.
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
