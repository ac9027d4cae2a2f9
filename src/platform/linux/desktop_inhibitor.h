// Keeps the desktop awake over D-Bus: inhibits its screen saver and power management on the session bus, and
// the system's idle sleep. Sleep requested by the user, by the lid or a menu, is not inhibited. No call
// blocks; a request released before its answer has come is undone when it comes.
#pragma once

#include "platform/inhibitor.h"

namespace ql240 {

class DesktopInhibitor : public Inhibitor {
public:
    std::shared_ptr<void> keepAwake(const QString& reason) override;
};

} // namespace ql240
