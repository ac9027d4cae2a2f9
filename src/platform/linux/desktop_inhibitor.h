// Keeps the desktop awake over D-Bus: its screen saver and power services on the session bus, and the
// system's own sleep when idle. A sleep that the user asks for, by the lid or a menu, is not held off.
// Nothing is waited for; what has not answered when it is let go is let go when it answers.
#pragma once

#include "platform/inhibitor.h"

namespace ql240 {

class DesktopInhibitor : public Inhibitor {
public:
    std::shared_ptr<void> keepAwake(const QString& reason) override;
};

} // namespace ql240
