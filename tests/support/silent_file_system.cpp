#include "support/silent_file_system.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <QFile>
#include <utility>

#include "support/own_mount.h"

namespace ql240 {

SilentFileSystem::SilentFileSystem(const QString& folder) : m_folder(folder) {
    mount();
    end();
}

void SilentFileSystem::mount() {
    m_device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    const QByteArray options = "fd=" + QByteArray::number(m_device) +
                               ",rootmode=40000,user_id=" + QByteArray::number(::getuid()) +
                               ",group_id=" + QByteArray::number(::getgid());
    m_mounted = hasOwnMounts() && ::mount("silent", QFile::encodeName(m_folder).constData(), "fuse",
                                          MS_NOSUID | MS_NODEV, options.constData()) == 0;
}

void SilentFileSystem::end() {
    ::close(std::exchange(m_device, -1));
    ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
}

} // namespace ql240
