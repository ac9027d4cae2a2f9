// The machine's mounted removable volumes. Callable from any thread.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace ql240 {

// One mounted removable volume. `drive` is its mount point without a trailing slash; label and file-system
// name are in the local 8-bit encoding, empty when unknown.
struct DriveInfo {
    QString drive;
    QByteArray label;
    QByteArray fileSystem;
};

class Drives {
public:
    virtual ~Drives() = default;

    // Queried anew at each call; sorted by device name. Blocks for as long as the system's service does,
    // possibly forever, so never call it on the interface thread. Empty when the service is missing or has
    // gone.
    virtual QList<DriveInfo> removableDrives() = 0;
};

} // namespace ql240
