// Removable volumes from UDisks2 on the system bus (address from DBUS_SYSTEM_BUS_ADDRESS).
#pragma once

#include "platform/drives.h"

namespace ql240 {

class UDisksDrives : public Drives {
public:
    QList<DriveInfo> removableDrives() override;
};

} // namespace ql240
