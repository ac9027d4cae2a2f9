// The file operations that the card's files need, behind virtual functions so that tests can let each one
// fail. Results are those of the system calls: negative with errno set when they fail. Only regular files are
// opened: a folder or a pipe under one of the names counts as a file that doesn't open, and nothing waits for
// a pipe's other end.
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QList>
#include <functional>
#include <optional>
#include <utility>

namespace ql240 {

class CardFiles {
public:
    virtual ~CardFiles() = default;

    virtual int open(const QByteArray& path, int flags);
    virtual ssize_t read(int file, char* to, size_t count);
    virtual ssize_t write(int file, const char* from, size_t count);
    virtual off_t size(int file);
    virtual int cut(int file, off_t size);
    virtual int sync(int file);
    virtual void close(int file);
    virtual int rename(const QByteArray& from, const QByteArray& to);
    virtual int remove(const QByteArray& path);
    virtual bool isFolder(const QByteArray& path);
    virtual int makeFolder(const QByteArray& path);
    // Writes out everything that the folder's file system still holds back.
    virtual int syncFolder(const QByteArray& path);
    // Calls `visit` with each name of the folder; false where the listing is not complete.
    virtual bool list(const QByteArray& path, const std::function<void(const QByteArray&)>& visit);
};

CardFiles& systemCardFiles();

// One open file, closed at the end of its life.
class CardFile {
public:
    CardFile(CardFiles& files, const QByteArray& path, int flags)
        : m_files(files), m_file(files.open(path, flags)) {}
    ~CardFile() {
        if (isOpen())
            m_files.close(m_file);
    }
    CardFile(CardFile&& other) noexcept : m_files(other.m_files), m_file(std::exchange(other.m_file, -1)) {}
    CardFile& operator=(CardFile&&) = delete;

    bool isOpen() const { return m_file >= 0; }
    ssize_t read(char* to, size_t count) { return m_files.read(m_file, to, count); }
    // Writes `bytes` at the file's present position, cuts the file behind them; false when either failed.
    bool replaceBy(const QByteArray& bytes);
    off_t size() { return m_files.size(m_file); }
    bool sync() { return m_files.sync(m_file) == 0; }

private:
    CardFiles& m_files;
    int m_file;
};

// One folder of the card, whose files are found without regard to case. The listing that this takes is made
// at most once, when a file isn't there in its exact spelling, and keeps only names that begin with `prefix`.
class CardFolder {
public:
    CardFolder(CardFiles& files, const QByteArray& path, const QByteArray& prefix)
        : m_files(files), m_path(path), m_prefix(prefix) {}

    CardFiles& files() { return m_files; }
    const QByteArray& path() const { return m_path; }
    QByteArray pathOf(const QByteArray& name) const { return m_path + '/' + name; }
    // `name` in the folder's own spelling; of several the exact one, else the first in byte order; else
    // nothing.
    std::optional<QByteArray> find(const QByteArray& name);
    // Whether a name that `find` didn't see is certain not to be there.
    bool isListed();
    CardFile openForReading(const QByteArray& name);

private:
    CardFiles& m_files;
    QByteArray m_path;
    QByteArray m_prefix;
    std::optional<QList<QByteArray>> m_names;
    bool m_complete = false;
};

// `path` with its last part in the spelling found on the card; unchanged where no such entry exists.
QByteArray existingIgnoringCase(CardFiles& files, const QByteArray& path);

} // namespace ql240
