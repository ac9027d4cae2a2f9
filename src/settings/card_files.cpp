#include "settings/card_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>

#include "platform/limits.h"

namespace ql240 {
namespace {

constexpr mode_t kNewFile = 0666;

bool isRegular(const struct stat& status) {
    return S_ISREG(status.st_mode);
}

// openFolder opens with O_PATH, which allows look-ups but neither listing nor syncing.
int openForListing(int folder) {
    return ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

} // namespace

int CardFiles::openDrive(const QByteArray& path) {
    return ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int CardFiles::openBeneath(int folder, const char* name, int flags) {
    open_how how = {};
    how.flags = static_cast<std::uint64_t>(flags) | O_CLOEXEC;
    how.mode = flags & O_CREAT ? kNewFile : 0;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    return static_cast<int>(::syscall(SYS_openat2, folder, name, &how, sizeof how));
}

// One entry at a time with O_NOFOLLOW, so falling back to openat() is as safe. Some sandboxes fail unknown
// system calls with EPERM.
int CardFiles::openEntry(int folder, const QByteArray& name, int flags) {
    if (name.isEmpty() || name == ".." || name.contains('/')) {
        errno = EINVAL;
        return -1;
    }
    const int opened = openBeneath(folder, name.constData(), flags);
    if (opened >= 0 || (errno != ENOSYS && errno != EPERM))
        return opened;
    return ::openat(folder, name.constData(), flags | O_NOFOLLOW | O_CLOEXEC, kNewFile);
}

int CardFiles::openFolder(int folder, const QByteArray& name) {
    return openEntry(folder, name, O_PATH | O_DIRECTORY);
}

int CardFiles::open(int folder, const QByteArray& name, int flags) {
    struct stat status = {};
    // Checked before opening, because opening some device files has side effects.
    if (!(flags & O_CREAT) &&
        (::fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0 || !isRegular(status)))
        return -1;
    const int fresh = flags & O_CREAT ? O_EXCL : 0;
    const int file = openEntry(folder, name, flags | fresh | O_NONBLOCK | O_NOCTTY);
    if (file < 0 || (::fstat(file, &status) == 0 && isRegular(status)))
        return file;
    ::close(file);
    errno = EINVAL;
    return -1;
}

ssize_t CardFiles::read(int file, char* to, std::size_t count) {
    return ::read(file, to, count);
}

ssize_t CardFiles::write(int file, const char* from, std::size_t count) {
    return ::write(file, from, count);
}

off_t CardFiles::size(int file) {
    struct stat status = {};
    return ::fstat(file, &status) == 0 ? status.st_size : -1;
}

int CardFiles::cut(int file, off_t size) {
    return ::ftruncate(file, size);
}

int CardFiles::sync(int file) {
    return ::fsync(file);
}

void CardFiles::close(int fileOrFolder) {
    ::close(fileOrFolder);
}

int CardFiles::rename(int folder, const QByteArray& from, const QByteArray& to) {
    return ::renameat(folder, from.constData(), folder, to.constData());
}

int CardFiles::remove(int folder, const QByteArray& name) {
    return ::unlinkat(folder, name.constData(), 0);
}

int CardFiles::makeFolder(int folder, const QByteArray& name) {
    return ::mkdirat(folder, name.constData(), 0777);
}

int CardFiles::syncFolder(int folder) {
    const int listed = openForListing(folder);
    if (listed < 0)
        return -1;
    const int result = ::syncfs(listed);
    ::close(listed);
    return result;
}

bool CardFiles::list(int folder, const std::function<void(const QByteArray&)>& visit) {
    const int listed = openForListing(folder);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(listed < 0 ? nullptr : ::fdopendir(listed), ::closedir);
    if (!entries)
        return false;
    for (int count = 0; count < limits::kFolderEntries; ++count) {
        errno = 0;
        const dirent* entry = ::readdir(entries.get());
        if (!entry)
            return errno == 0;
        visit(QByteArray::fromRawData(entry->d_name, static_cast<qsizetype>(qstrlen(entry->d_name))));
    }
    return false;
}

CardFiles& systemCardFiles() {
    static CardFiles files;
    return files;
}

} // namespace ql240
