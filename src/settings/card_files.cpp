#include "settings/card_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

namespace ql240 {

int CardFiles::open(const QByteArray& path, int flags) {
    const int file = ::open(path.constData(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
    struct stat status = {};
    if (file < 0 || (::fstat(file, &status) == 0 && S_ISREG(status.st_mode)))
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

void CardFiles::close(int file) {
    ::close(file);
}

int CardFiles::rename(const QByteArray& from, const QByteArray& to) {
    return ::rename(from.constData(), to.constData());
}

int CardFiles::remove(const QByteArray& path) {
    return ::unlink(path.constData());
}

bool CardFiles::isFolder(const QByteArray& path) {
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

int CardFiles::makeFolder(const QByteArray& path) {
    return ::mkdir(path.constData(), 0777);
}

int CardFiles::syncFolder(const QByteArray& path) {
    const int folder = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return -1;
    const int result = ::syncfs(folder);
    ::close(folder);
    return result;
}

bool CardFiles::list(const QByteArray& path, const std::function<void(const QByteArray&)>& visit) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.constData()), ::closedir);
    if (!folder)
        return false;
    errno = 0;
    while (const dirent* entry = ::readdir(folder.get())) {
        visit(QByteArray::fromRawData(entry->d_name, qsizetype(qstrlen(entry->d_name))));
        errno = 0;
    }
    return errno == 0;
}

CardFiles& systemCardFiles() {
    static CardFiles files;
    return files;
}

bool CardFile::replaceBy(const QByteArray& bytes) {
    if (m_files.write(m_file, bytes.constData(), size_t(bytes.size())) != bytes.size())
        return false;
    const off_t size = m_files.size(m_file);
    return size == bytes.size() || (size > bytes.size() && m_files.cut(m_file, bytes.size()) == 0);
}

bool CardFolder::isListed() {
    if (m_names)
        return m_complete;
    m_names.emplace();
    m_complete = m_files.list(m_path, [this](const QByteArray& entry) {
        if (entry.left(m_prefix.size()).compare(m_prefix, Qt::CaseInsensitive) == 0)
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

CardFile CardFolder::openForReading(const QByteArray& name) {
    if (CardFile exact(m_files, pathOf(name), O_RDONLY); exact.isOpen())
        return exact;
    return CardFile(m_files, pathOf(find(name).value_or(name)), O_RDONLY);
}

QByteArray existingIgnoringCase(CardFiles& files, const QByteArray& path) {
    const auto slash = path.lastIndexOf('/');
    if (slash < 0 || files.isFolder(path))
        return path;
    const QByteArray name = path.mid(slash + 1);
    CardFolder parent(files, path.left(slash), name);
    return parent.pathOf(parent.find(name).value_or(name));
}

} // namespace ql240
