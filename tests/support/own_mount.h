// File systems that only the test sees. Needs root or a user namespace.
#pragma once

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>
#include <QFile>
#include <QTest>

namespace ql240 {

inline bool g_ownMounts = false;

// Gives this process a private mount namespace. Call before the first thread starts.
inline void enterOwnMounts() {
    const auto write = [](const char* path, const QByteArray& text) {
        const int file = ::open(path, O_WRONLY | O_CLOEXEC);
        const bool written = file >= 0 && ::write(file, text.constData(), size_t(text.size())) == text.size();
        ::close(file);
        return written;
    };
    const QByteArray uid = QByteArray::number(::getuid());
    const QByteArray gid = QByteArray::number(::getgid());
    const bool isRoot =
        uid == "0" ||
        (::unshare(CLONE_NEWUSER) == 0 && write("/proc/self/setgroups", "deny") &&
         write("/proc/self/uid_map", "0 " + uid + " 1") && write("/proc/self/gid_map", "0 " + gid + " 1"));
    g_ownMounts = isRoot && ::unshare(CLONE_NEWNS) == 0 &&
                  ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// A test's main(); g_ownMounts says whether the machine allows such mounts.
template <typename Application, typename Test>
int runOnOwnMounts(int argc, char** argv) {
    enterOwnMounts();
    Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

// Fills a folder's file system up to `pages` free pages of 4 KiB.
inline bool fillUp(const QString& folder, int pages) {
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

inline bool makeReadOnly(const QByteArray& folder) {
    return ::mount("none", folder.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

} // namespace ql240
