// A file system that doesn't answer, mounted over a folder on request, like a failing card reader. Nothing
// serves it, so every call hangs, and fails when the object ends. Needs runOnOwnMounts().
#pragma once

#include <QFile>
#include <utility>

#include "support/own_mount.h"

namespace ql240 {

class SilentFileSystem {
public:
    static constexpr char kNeeds[] = "needs FUSE, and root or a user namespace";

    // The existing folder answers until `fallSilent`.
    explicit SilentFileSystem(const QString& folder) : m_folder(QFile::encodeName(folder)) {
        fallSilent();
        end();
    }
    ~SilentFileSystem() { end(); }
    Q_DISABLE_COPY_MOVE(SilentFileSystem)

    bool isMounted() const { return m_mounted; }
    void fallSilent() {
        m_device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
        const QByteArray options = "fd=" + QByteArray::number(m_device) +
                                   ",rootmode=40000,user_id=" + QByteArray::number(::getuid()) +
                                   ",group_id=" + QByteArray::number(::getgid());
        m_mounted = g_ownMounts && ::mount("silent", m_folder.constData(), "fuse", MS_NOSUID | MS_NODEV,
                                           options.constData()) == 0;
    }
    // Makes all waiting calls fail.
    void end() {
        ::close(std::exchange(m_device, -1));
        ::umount2(m_folder.constData(), MNT_DETACH);
    }

private:
    QByteArray m_folder;
    int m_device = -1;
    bool m_mounted = false; // since it was tried last
};

} // namespace ql240
