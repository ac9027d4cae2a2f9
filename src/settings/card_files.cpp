#include "settings/card_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <algorithm>
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

// A folder opened by openFolder can be looked up in only, neither listed nor brought to the disk.
int openForListing(int folder) {
    return ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

// Where a new file is written before it takes its name.
QByteArray asideName(const QByteArray& name) {
    return name.chopped(4) + ".new";
}

} // namespace

int CardFiles::openDrive(const QByteArray& path) {
    return ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int CardFiles::openBeneath(int folder, const char* name, int flags) {
    open_how how = {};
    how.flags = quint64(flags) | O_CLOEXEC;
    how.mode = flags & O_CREAT ? kNewFile : 0;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    return int(::syscall(SYS_openat2, folder, name, &how, sizeof how));
}

// One entry at a time, none of them a link: so the older call is as safe. Some sandboxes answer EPERM to a
// call that they don't know.
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
    // Opening alone would start some devices.
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

ssize_t CardFiles::read(int file, char* to, size_t count) {
    return ::read(file, to, count);
}

ssize_t CardFiles::write(int file, const char* from, size_t count) {
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
        visit(QByteArray::fromRawData(entry->d_name, qsizetype(qstrlen(entry->d_name))));
    }
    return false;
}

CardFiles& systemCardFiles() {
    static CardFiles files;
    return files;
}

QByteArray CardFile::readStart(qsizetype limit, bool* whole) {
    QByteArray bytes;
    ssize_t count = 1;
    while (count > 0 && bytes.size() < limit) {
        char piece[4096];
        count = read(piece, sizeof piece);
        bytes.append(piece, qMax<qsizetype>(0, count));
    }
    if (whole)
        *whole = count == 0 && bytes.size() <= limit;
    return bytes.left(limit);
}

bool CardFile::replaceBy(const QByteArray& bytes) {
    if (!write(bytes.constData(), bytes.size()))
        return false;
    const off_t now = size();
    return now == bytes.size() || (now > bytes.size() && files().cut(handle(), bytes.size()) == 0);
}

bool CardFolder::isListed() {
    if (m_names)
        return m_complete;
    m_names.emplace();
    m_complete = files().list(handle(), [this](const QByteArray& entry) {
        m_names->append(QByteArray(entry.constData(), entry.size()));
    });
    std::sort(m_names->begin(), m_names->end());
    return m_complete;
}

std::optional<QByteArray> CardFolder::find(const QByteArray& name) {
    isListed();
    if (std::binary_search(m_names->cbegin(), m_names->cend(), name))
        return name;
    const auto found = std::find_if(m_names->cbegin(), m_names->cend(), [&](const QByteArray& entry) {
        return entry.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == m_names->cend() ? std::nullopt : std::optional(*found);
}

void CardFolder::makeDrive() {
    QDir().mkpath(QFile::decodeName(m_path));
    *this = CardFolder(files(), m_path);
}

CardFolder CardFolder::folder(const QByteArray& name) {
    const auto open = [this](const QByteArray& spelled) {
        return CardFolder(files(), files().openFolder(handle(), spelled), m_path + '/' + spelled);
    };
    if (CardFolder exact = open(name); exact.isOpen())
        return exact;
    return open(find(name).value_or(name));
}

CardFile CardFolder::openForReading(const QByteArray& name) {
    if (CardFile exact(files(), files().open(handle(), name, O_RDONLY)); exact.isOpen())
        return exact;
    return CardFile(files(), files().open(handle(), find(name).value_or(name), O_RDONLY));
}

CardFile CardFolder::openForWriting(const QByteArray& name) {
    return CardFile(files(), files().open(handle(), name, O_WRONLY));
}

// What lies there is a rest, or was put there to lead us elsewhere.
CardFile CardFolder::createAside(const QByteArray& aside) {
    CardFile fresh(files(), files().open(handle(), aside, O_WRONLY | O_CREAT));
    if (fresh.isOpen() || errno != EEXIST || files().remove(handle(), aside) != 0)
        return fresh;
    return CardFile(files(), files().open(handle(), aside, O_WRONLY | O_CREAT));
}

bool CardFolder::replace(const QByteArray& name, const std::function<bool(CardFile&)>& write) {
    const QByteArray aside = asideName(name);
    bool written = false;
    {
        CardFile file = createAside(aside);
        if (!file.isOpen())
            return false;
        written = write(file) && file.sync();
    }
    if (!written || files().rename(handle(), aside, name) != 0)
        files().remove(handle(), aside);
    return true;
}

void CardFolder::removeRest(const QByteArray& name) {
    if (const auto rest = find(asideName(name)))
        files().remove(handle(), *rest);
}

CardFolder cardFolderAt(CardFiles& files, const QByteArray& path) {
    const auto slash = path.lastIndexOf('/');
    return CardFolder(files, slash > 0 ? path.left(slash) : QByteArray("/")).folder(path.mid(slash + 1));
}

} // namespace ql240
