#include "base/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace ql240 {
namespace {

// The file's descriptor; -1 with errno, or without if it is no regular file.
int openedRegular(const char* path) {
    struct stat status {};
    errno = 0;
    // Check first: opening a device can have side effects.
    if (::stat(path, &status) != 0 || !S_ISREG(status.st_mode))
        return -1;
    const int file = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    // Check again, since the entry may have been replaced.
    if (file < 0 || (::fstat(file, &status) == 0 && S_ISREG(status.st_mode)))
        return file;
    ::close(file);
    errno = 0;
    return -1;
}

} // namespace

bool openRegularFile(QFile& file, QString& problem) {
    const int descriptor = openedRegular(QFile::encodeName(file.fileName()).constData());
    if (descriptor < 0)
        problem = errno != 0 ? qt_error_string(errno) : QStringLiteral("no regular file");
    return descriptor >= 0 &&
           file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
}

} // namespace ql240
