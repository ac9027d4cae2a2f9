#include "support/own_mount.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>

namespace ql240 {
namespace {

constexpr int kImpossible = 77;

bool writeText(const char* path, const QByteArray& text) {
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool written = file >= 0 && ::write(file, text.constData(), size_t(text.size())) == text.size();
    ::close(file);
    return written;
}

[[noreturn]] void runChild(const QString& folder, int kilobytes, const std::function<QString()>& body,
                           int out) {
    const QByteArray options = "mode=755,size=" + QByteArray::number(kilobytes) + "k";
    if (!enterOwnMounts() ||
        ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, options.constData()) != 0)
        ::_exit(kImpossible);
    const QByteArray error = body().toUtf8();
    const bool told = ::write(out, error.constData(), size_t(error.size())) == error.size();
    ::_exit(told ? 0 : 1);
}

} // namespace

bool enterOwnMounts() {
    const QByteArray uid = QByteArray::number(::getuid());
    const QByteArray gid = QByteArray::number(::getgid());
    if (uid != "0") {
        if (::unshare(CLONE_NEWUSER) != 0 || !writeText("/proc/self/setgroups", "deny") ||
            !writeText("/proc/self/uid_map", "0 " + uid + " 1") ||
            !writeText("/proc/self/gid_map", "0 " + gid + " 1"))
            return false;
    }
    return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

OwnMountResult inOwnMount(const QString& folder, int kilobytes, const std::function<QString()>& body) {
    int ends[2] = {};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return {};
    const pid_t child = ::fork();
    if (child == 0)
        runChild(folder, kilobytes, body, ends[1]);
    ::close(ends[1]);
    QFile answer;
    answer.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    const QString error = QString::fromUtf8(answer.readAll());
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return {true, QStringLiteral("the child process crashed")};
    return {WEXITSTATUS(status) != kImpossible, error};
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
