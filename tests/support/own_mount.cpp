#include "support/own_mount.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <QFile>

namespace ql240 {
namespace {

bool g_ownMounts = false;

bool writeText(const char* path, const QByteArray& text) {
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool written = file >= 0 && ::write(file, text.constData(), size_t(text.size())) == text.size();
    ::close(file);
    return written;
}

} // namespace

void enterOwnMounts() {
    const QByteArray uid = QByteArray::number(::getuid());
    const QByteArray gid = QByteArray::number(::getgid());
    if (uid != "0") {
        if (::unshare(CLONE_NEWUSER) != 0 || !writeText("/proc/self/setgroups", "deny") ||
            !writeText("/proc/self/uid_map", "0 " + uid + " 1") ||
            !writeText("/proc/self/gid_map", "0 " + gid + " 1"))
            return;
    }
    g_ownMounts =
        ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool hasOwnMounts() {
    return g_ownMounts;
}

bool fillUp(const QString& folder, int pages) {
    constexpr int kPage = 4096;
    QFile filler(folder + QStringLiteral("/filler"));
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    const QByteArray page(kPage, 'x');
    qint64 size = 0;
    while (filler.write(page) == kPage)
        size += kPage;
    return filler.resize(size - qint64(pages) * kPage);
}

bool makeReadOnly(const QString& folder) {
    return ::mount("none", QFile::encodeName(folder).constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) ==
           0;
}

} // namespace ql240
