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

    // Asked afresh at each call, in the order of the device's name. Answers within 500 ms; empty when the
    // host's service is absent, slow or gone.
    virtual QList<DriveInfo> removableDrives() = 0;
};

} // namespace ql240
