// The removable volumes of the machine, as the host system tells them. Callable from any thread.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace ql240 {

// One mounted removable volume. `drive` is its mount point without a trailing slash; label and file-system
// name are the host's own bytes in the local 8-bit encoding, empty when unknown.
struct DriveInfo {
    QString drive;
    QByteArray label;
    QByteArray fileSystem;
};

class Drives {
public:
    virtual ~Drives() = default;

    // Asked afresh at each call, in the order of the device's name. Takes as long as the host's service does,
    // which may be for ever: never to be called on the interface thread. Empty when the service is absent or
    // gone.
    virtual QList<DriveInfo> removableDrives() = 0;
};

} // namespace ql240
